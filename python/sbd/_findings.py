"""What the library has to say: findings, and the exceptions that carry them."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Any, Callable, Optional

from . import _native
from ._items import Position
from ._native import to_text


SEVERITIES = ("error", "warning", "internal error")


@dataclass(frozen=True)
class Finding:
    """Something that the library has to say about a file or an edit."""

    severity: str  #: "error", "warning" or "internal error".
    number: int  #: The number of the message; 0 for one that is not in the catalogue.
    key: str  #: Its key, such as "ESBD_SBD_SYNTAX_ERROR".
    text: str  #: What it says, in English.
    parameter: str  #: The parameter of a device that it is about, or "".
    position: Optional[Position]  #: Where in the file, if it is about a place in it.

    def __str__(self) -> str:
        place = f"{self.position.line}:{self.position.column}: " if self.position else ""
        key = f" [{self.key}]" if self.key else ""
        return f"{place}{self.severity}: {self.text}{key}"


class SbdError(Exception):
    """The base of the module's own exceptions; ``findings`` tells what is wrong."""

    def __init__(self, what: str, findings: tuple[Finding, ...] = ()) -> None:
        super().__init__("\n".join([what] + [str(finding) for finding in findings[:10]]))
        self.findings = findings


class ReadError(SbdError):
    """A text has faults: there is no document to work with."""


class UnreadableError(SbdError, OSError):
    """A file can't be opened or read."""


class EditError(SbdError):
    """An edit or the saving was refused, and nothing has changed."""


def make_position(position: _native.POSITION) -> Optional[Position]:
    if position.line == 0:
        return None
    return Position(position.line, position.column, position.offset, position.length)


def make_findings(count: Callable[..., int], at: Callable[..., Any], handle: object) -> tuple[Finding, ...]:
    findings = []
    for index in range(count(handle)):
        found = at(handle, index).contents
        findings.append(Finding(SEVERITIES[found.severity], found.number, to_text(found.key),
                                to_text(found.text), to_text(found.parameter),
                                make_position(found.position)))
    return tuple(findings)


def raise_for(status: int, what: str, findings: tuple[Finding, ...]) -> None:
    """Raises what fits the status; nothing for a good one."""
    if status == _native.OK:
        return
    if status == _native.NO_MEMORY:
        raise MemoryError(what)
    kinds = {_native.FAULTY: ReadError, _native.UNREADABLE: UnreadableError,
             _native.REFUSED: EditError}
    text = to_text(_native.library.sbdc_status_text(status))
    raise kinds.get(status, SbdError)(f"{what}: {text}", findings)
