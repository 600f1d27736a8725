"""Values in the notation of the format."""

from __future__ import annotations

import math
import re
from decimal import Decimal
from typing import Any, Union

#: What the value of a parameter can be; a tuple is that of a reference statement.
Value = Union[int, float, bool, str, list[Any], tuple[str, ...]]

_WORD = re.compile(r"[A-Za-z_][A-Za-z0-9_]*\Z")
_LARGEST = 0xFFFFFFFF


def is_word(text: str) -> bool:
    """True for a text that may stand without quotes."""
    return bool(_WORD.match(text)) and text.lower() not in ("true", "false")


def quote(text: str) -> str:
    if '"' in text or "\0" in text:
        raise ValueError(f"the format has no form for a text with a double quote or NUL: {text!r}")
    return f'"{text}"'


def to_notation(value: Any, quoted: bool = False) -> str:
    """How a value of Python stands in a file. A text gets quotes if it can't do without them, or
    with ``quoted``.

    >>> to_notation([255, -1.5, True, "word", "two words"])
    '{255, -1.5, true, word, "two words"}'
    """
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, int):
        if value > _LARGEST:
            raise ValueError(f"the format has no form for a whole number of more than 32 bits: {value}")
        return str(value)
    if isinstance(value, float):
        return _float(value)
    if isinstance(value, str):
        return value if is_word(value) and not quoted else quote(value)
    if isinstance(value, (list, tuple)):
        return _list(value)
    raise TypeError(f"the format has no form for {type(value).__name__}")


def _float(value: float) -> str:
    if not math.isfinite(value):
        raise ValueError(f"the format has no form for {value}")
    # As few digits as it takes, without an exponent.
    digits = format(Decimal(repr(value)), "f")
    return digits if "." in digits else digits + ".0"


# Lists may nest deeper than Python likes functions to call themselves.
def _list(value: Any) -> str:
    parts: list[str] = []
    to_write: list[Any] = [value]
    closing, comma = object(), object()
    while to_write:
        part = to_write.pop()
        if part is closing:
            parts.append("}")
        elif part is comma:
            parts.append(", ")
        elif isinstance(part, (list, tuple)):
            parts.append("{")
            to_write.append(closing)
            for index, element in enumerate(reversed(part)):
                if index:
                    to_write.append(comma)
                to_write.append(element)
        else:
            parts.append(to_notation(part))
    return "".join(parts)
