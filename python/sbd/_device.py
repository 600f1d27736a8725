"""Devices: a descriptor judged by the rules of its chip."""

from __future__ import annotations

import ctypes
import os
from dataclasses import dataclass
from typing import Any, Callable, Iterator, Optional, Union

from . import _native
from ._document import Path
from ._findings import Finding, make_findings, make_position, raise_for
from ._items import Position
from ._native import library, to_bytes, to_text

ORIGINS = ("none", "statement", "present block default", "absent block default")
_TYPES = (bool, int, float, str)


@dataclass(frozen=True)
class DeviceParameter:
    """A parameter of the stripe, with defaults filled in."""

    name: str  #: Relative to the stripe's module, in lower case: "sdram.data_width".
    type: type  #: bool, int, float or str.
    value: Union[bool, int, float, str, None]  #: None when it has none.
    origin: str  #: "statement", "present block default", "absent block default" or "none".
    is_required: bool  #: The file has to state it, as the other settings are.
    allowed: str  #: The values that are allowed, in English: "one of: little, big".
    position: Optional[Position]  #: Its statement, if the file has one.


@dataclass(frozen=True)
class Clocks:
    """Frequencies that follow from the settings; None where the settings give none. They are in
    hertz if the file gives the input clock with a unit."""

    ahb1: Optional[float]
    ahb2: Optional[float]
    sdram: Optional[float]


class Device:
    """The device block ``name`` of a file, judged by the rules of its chip.

    Raises UnreadableError when the file can't be opened. All other faults are in ``findings``; what
    could be read is there all the same. Nothing changes after that: read again for a new state."""

    chip: str  #: As the file states it, in lower case: "qmxa10"; "" if it does not.
    module: str  #: The full name of the stripe's module; "" if there is none.
    parameters: dict[str, DeviceParameter]  #: By name, in the order in which they are judged.
    clocks: Clocks
    dpram_widths: tuple[Optional[int], Optional[int]]  #: Of the ports 0 and 1, in bits.
    findings: tuple[Finding, ...]

    def __init__(self, path: Path, name: str) -> None:
        self._read(name, lambda handle: int(library.sbdc_device_read(handle, os.fsencode(path))))

    @classmethod
    def from_text(cls, text: Union[str, bytes], name: str, file_name: str = "text") -> "Device":
        """The same for a text; ``file_name`` stands for the file in findings."""
        encoded = text if isinstance(text, bytes) else text.encode("utf-8", "surrogateescape")
        device = cls.__new__(cls)
        device._read(name, lambda handle: int(library.sbdc_device_read_text(
            handle, encoded, len(encoded), to_bytes(file_name))))
        return device

    @property
    def is_good(self) -> bool:
        """True when the file has no fault and every parameter is as it must be."""
        return not any(finding.severity != "warning" for finding in self.findings)

    def __getitem__(self, name: str) -> Union[bool, int, float, str, None]:
        """The value of a parameter, named in any letter case; None when it has none, and KeyError
        when the chip does not know it."""
        return self.parameters[name.lower()].value

    def __contains__(self, name: object) -> bool:
        return isinstance(name, str) and name.lower() in self.parameters

    def __iter__(self) -> Iterator[DeviceParameter]:
        return iter(self.parameters.values())

    def __len__(self) -> int:
        return len(self.parameters)

    def _read(self, name: str, read: Callable[[ctypes.c_void_p], int]) -> None:
        if not name:
            raise ValueError("a device needs the name of its block")
        handle = ctypes.c_void_p()
        raise_for(library.sbdc_device_new(to_bytes(name), ctypes.byref(handle)), "new device", ())
        try:
            status = read(handle)
            self.findings = make_findings(library.sbdc_device_finding_count,
                                          library.sbdc_device_finding_at, handle)
            if status != _native.FAULTY:
                raise_for(status, "read", self.findings)
            self._take(handle)
        finally:
            library.sbdc_device_free(handle)

    def _take(self, handle: ctypes.c_void_p) -> None:
        self.chip = to_text(library.sbdc_device_chip(handle))
        self.module = to_text(library.sbdc_device_module(handle))
        self.parameters = {}
        for index in range(library.sbdc_device_parameter_count(handle)):
            parameter = _make_parameter(library.sbdc_device_parameter(handle, index).contents)
            self.parameters[parameter.name] = parameter
        self.clocks = Clocks(*(_clock(handle, clock) for clock in (1, 2, 3)))
        self.dpram_widths = (_width(handle, 0), _width(handle, 1))


def _make_parameter(found: _native.DEVICE_PARAMETER) -> DeviceParameter:
    kind = _TYPES[found.type]
    value: Any = None
    if found.has_value:
        value = to_text(found.text) if kind is str else kind(found.number)
    return DeviceParameter(to_text(found.name), kind, value, ORIGINS[found.origin],
                           bool(found.is_required), to_text(found.allowed),
                           make_position(found.position))


def _clock(handle: ctypes.c_void_p, clock: int) -> Optional[float]:
    frequency = ctypes.c_double()
    status = library.sbdc_device_clock(handle, clock, ctypes.byref(frequency))
    return frequency.value if status == _native.OK else None


def _width(handle: ctypes.c_void_p, port: int) -> Optional[int]:
    width = ctypes.c_uint32()
    status = library.sbdc_device_dpram_width(handle, port, ctypes.byref(width))
    return width.value if status == _native.OK else None
