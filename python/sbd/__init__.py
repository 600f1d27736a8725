"""System Build Descriptor files: read, ask, edit, validate.

    doc = sbd.read("board.sbd")
    doc["stripe.sdram.data_width"]
    for parameter in doc.parameters():
        print(parameter.name, parameter.value, parameter.position.line)
    with doc.edit():
        doc["stripe.sdram.data_width"] = 16
    doc.save()

    device = sbd.Device("board.sbd", "board")
    device.findings, device.clocks.ahb1, device["sdram.data_width"]
"""

from ._device import Clocks, Device, DeviceParameter
from ._document import Document, read, read_text
from ._findings import EditError, Finding, ReadError, SbdError, UnreadableError
from ._items import Block, Item, Parameter, Position, Reference
from ._native import library as _library
from ._notation import Value, to_notation

__version__: str = _library.sbdc_version().decode()

__all__ = [
    "Block", "Clocks", "Device", "DeviceParameter", "Document", "EditError", "Finding", "Item",
    "Parameter", "Position", "ReadError", "Reference", "SbdError", "UnreadableError", "Value",
    "read", "read_text", "to_notation",
]

# Messages and documents name the classes as programs do.
for _name in __all__:
    if isinstance(globals()[_name], type):
        globals()[_name].__module__ = __name__
