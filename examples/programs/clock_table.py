"""Prints the clocks of all devices of a file, and where the file states what they follow from.

clock_table.py FILE
"""

import sys
from typing import Optional

import sbd


def in_mhz(frequency: Optional[float]) -> str:
    return "-" if frequency is None else f"{frequency / 1e6:g} MHz"


def print_device(path: str, name: str) -> None:
    device = sbd.Device(path, name)
    clocks = device.clocks
    print(f"{name}: {device.chip or 'no chip'}")
    print(f"  AHB1 {in_mhz(clocks.ahb1)}, AHB2 {in_mhz(clocks.ahb2)}, "
          f"SDRAM {in_mhz(clocks.sdram)}")
    for parameter in device:
        if parameter.name.startswith("clocks.") and parameter.position is not None:
            print(f"  line {parameter.position.line}: {parameter.name} = {parameter.value}")


def main(arguments: list[str]) -> int:
    if len(arguments) != 2:
        print(__doc__.strip() if __doc__ else "", file=sys.stderr)
        return 2
    try:
        document = sbd.read(arguments[1])
    except sbd.SbdError as error:
        for finding in error.findings:
            print(f"{arguments[1]}:{finding}", file=sys.stderr)
        return 1
    for block in document.blocks():
        if block.depth == 0:
            print_device(arguments[1], block.name)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
