"""Blocks and parameters as they are listed.

A listing is taken over from the library as a whole: one buffer of records and one of names. Each item
is a tuple of its name, the most wanted part of its record, the listing, and its place in it, and looks
at the rest of the record only when it is asked. That is what makes going through a large file quick.
"""

from __future__ import annotations

import ctypes
import struct
from itertools import count, repeat
from operator import itemgetter
from typing import Any, Iterator, Optional, Union

from . import _native
from ._findings import Position, make_position
from ._native import library, to_text

#: What the value of a parameter can be.
Value = Union[int, float, bool, str, list, tuple]

KINDS = ("decimal", "octal", "hexadecimal", "binary", "float", "boolean", "string", "list",
         "references", "reference", "", "word")
UNITS = ("", "K", "M", "G", "Hz", "MHz")

_BINARY, _FLOAT, _BOOLEAN, _LIST = 3, 4, 5, 7

# What every item has at hand, and where it stands in sbdc_item: its kind, and of its value the kind,
# the number and the text.
_DIGEST = "@16xi36xi4xd8xP40x"
_KIND, _VALUE_KIND, _NUMBER, _TEXT = range(4)

# All of sbdc_item, looked at when something else is asked: each POSITION counts as four.
_RECORD = "@PPiI4I4IiiddPPII4III"
_TYPE, _DEPTH, _POSITION, _NAME_POSITION, _UNIT, _UNSCALED = 1, 3, 4, 8, 13, 15
_FIRST_ELEMENT, _ELEMENT_COUNT, _VALUE_POSITION = 18, 19, 20
_FIRST_ATTRIBUTE, _ATTRIBUTE_COUNT = 24, 25


def _position(record: tuple, at: int) -> Optional[Position]:
    offset, length, line, column = record[at:at + 4]
    return Position(line, column, offset, length) if line else None


def _text_at(address: int) -> str:
    return to_text(ctypes.string_at(address))


class Item(tuple):
    """A block or a statement, as it was when it was listed: later edits do not change it."""

    __slots__ = ()

    name: str = property(itemgetter(0), doc="The full name, spelled as declared.")  # type: ignore

    @property
    def own_name(self) -> str:
        """The last part of the name."""
        return self[0].rpartition(".")[2]

    @property
    def depth(self) -> int:
        """How many blocks are around it."""
        return self._record()[_DEPTH]

    @property
    def position(self) -> Optional[Position]:
        """Where it stands as a whole; None for what was edited since the file was read."""
        return _position(self._record(), _POSITION)

    @property
    def name_position(self) -> Optional[Position]:
        """Where its declared name stands."""
        return _position(self._record(), _NAME_POSITION)

    def _record(self) -> tuple:
        return self[2].record(self[3])

    def __repr__(self) -> str:
        return f"<{type(self).__name__} {self[0]}>"


class Block(Item):
    """A block of the file."""

    __slots__ = ()

    @property
    def type(self) -> str:
        """The type keyword as written, such as "module"."""
        return _text_at(self._record()[_TYPE])


class _Statement(Item):
    __slots__ = ()

    @property
    def value_position(self) -> Optional[Position]:
        """Where the value stands, with its unit, quotes or braces."""
        return _position(self._record(), _VALUE_POSITION)

    def _elements(self) -> list[_native.VALUE]:
        record = self._record()
        return self[2].elements(record[_FIRST_ELEMENT], record[_ELEMENT_COUNT])


class Parameter(_Statement):
    """An assignment: a parameter with its value."""

    __slots__ = ()

    @property
    def value(self) -> Value:
        """A number times its unit, a Boolean, a text without its quotes, or a list of these."""
        record = self[1]
        kind = record[_VALUE_KIND]
        if kind <= _BINARY:
            return int(record[_NUMBER])
        if kind == _FLOAT:
            return record[_NUMBER]
        if kind == _BOOLEAN:
            return record[_NUMBER] == 1
        if kind == _LIST:
            return self[2].list_of(self._elements())
        return _text_at(record[_TEXT])

    @property
    def kind(self) -> str:
        """How the value is written: "decimal", "octal", "hexadecimal", "binary", "float",
        "boolean", "string", "word" or "list"."""
        return KINDS[self[1][_VALUE_KIND]]

    @property
    def unit(self) -> str:
        """"K", "M", "G", "Hz", "MHz" or ""."""
        return UNITS[self._record()[_UNIT]]

    @property
    def unscaled(self) -> Optional[float]:
        """The number before its unit is applied; None for other values."""
        return self._record()[_UNSCALED] if self[1][_VALUE_KIND] <= _FLOAT else None

    @property
    def attributes(self) -> dict[str, Optional[str]]:
        """Keys and values of the attributes; None for a bare key."""
        record = self._record()
        return self[2].attributes(record[_FIRST_ATTRIBUTE], record[_ATTRIBUTE_COUNT])


class Reference(_Statement):
    """A reference statement."""

    __slots__ = ()

    @property
    def targets(self) -> tuple[str, ...]:
        """The full names of what it refers to."""
        return tuple(to_text(element.target) for element in self._elements())

    @property
    def written(self) -> tuple[str, ...]:
        """The names as they stand in the file."""
        return tuple(to_text(element.text) for element in self._elements())

    @property
    def value(self) -> Value:
        """The same as ``targets``."""
        return self.targets


_CLASSES = {_native.BLOCK: Block, _native.PARAMETER: Parameter,
            _native.REFERENCE_STATEMENT: Reference}


class Listing:
    """A listing of the library, which lives as long as any of its items."""

    def __init__(self, handle: int) -> None:
        self._handle = handle
        view = _native.VIEW()
        library.sbdc_listing_get_view(handle, view)
        self._count = view.item_count
        encoded = ctypes.string_at(view.names, view.name_length) if view.name_length else b""
        self._names = to_text(encoded).split("\0")
        # A later library may have longer records, which begin as these do.
        longer = view.item_size - struct.calcsize(_RECORD)
        self._digest = struct.Struct(f"{_DIGEST}{longer}x")
        self._record = struct.Struct(_RECORD)
        self._buffer: Any = b""
        if self._count:
            size = view.item_count * view.item_size
            self._buffer = memoryview((ctypes.c_char * size).from_address(view.items))

    def __del__(self) -> None:
        library.sbdc_listing_free(self._handle)

    def __iter__(self) -> Iterator[Item]:
        """All items in file order, each of its class."""
        for item in self.all_of(tuple):
            yield _CLASSES[item[1][_KIND]](item)

    def all_of(self, kind: type) -> Iterator[Any]:
        """All items, which are all of one class."""
        digests = self._digest.iter_unpack(self._buffer)
        return map(kind, zip(self._names, digests, repeat(self), count()))

    def record(self, index: int) -> tuple:
        return self._record.unpack_from(self._buffer, index * self._digest.size)

    def elements(self, first: int, number: int) -> list[_native.VALUE]:
        at = library.sbdc_listing_element
        return [at(self._handle, index).contents for index in range(first, first + number)]

    def attributes(self, first: int, number: int) -> dict[str, Optional[str]]:
        found: dict[str, Optional[str]] = {}
        for index in range(first, first + number):
            attribute = library.sbdc_listing_attribute(self._handle, index).contents
            value = None if attribute.value is None else to_text(attribute.value)
            found[to_text(attribute.key)] = value
        return found

    def list_of(self, elements: list[_native.VALUE]) -> list:
        """The list with these elements. Lists nest as deep as the file likes, so those that are met
        are noted, and filled one by one."""
        outermost: list = []
        to_fill = [(outermost, elements)]
        while to_fill:
            filled, values = to_fill.pop()
            for value in values:
                if value.kind != _LIST:
                    filled.append(_scalar(value))
                    continue
                inner: list = []
                filled.append(inner)
                to_fill.append((inner, self.elements(value.first_element, value.element_count)))
        return outermost


def _scalar(value: _native.VALUE) -> Value:
    if value.kind <= _BINARY:
        return int(value.number)
    if value.kind == _FLOAT:
        return value.number
    if value.kind == _BOOLEAN:
        return value.number == 1
    return to_text(value.text)
