"""The functions of libsbd_c, as ctypes sees them. Its header, sbd_c.h, says what they mean."""

from __future__ import annotations

import ctypes
import pathlib
from collections.abc import Sequence
from ctypes import POINTER, Structure, c_char_p, c_double, c_int, c_int32, c_size_t, c_uint, c_uint32
from ctypes import c_void_p
from typing import Any

# Beside this file in a wheel; otherwise where the system keeps its libraries.
LIBRARY_NAME = "libsbd_c.so.0"

OK, FAULTY, UNREADABLE, REFUSED, NOT_FOUND, WRONG_KIND, MISUSE, NO_MEMORY, INTERNAL = range(9)

BLOCK, PARAMETER, REFERENCE_STATEMENT = 1, 2, 4
AT_END, BEFORE, BEHIND = range(3)


class POSITION(Structure):
    _fields_ = [("offset", c_uint32), ("length", c_uint32), ("line", c_uint32),
                ("column", c_uint32)]


class FINDING(Structure):
    _fields_ = [("severity", c_int), ("number", c_int32), ("key", c_char_p), ("text", c_char_p),
                ("parameter", c_char_p), ("position", POSITION)]


class DEVICE_PARAMETER(Structure):
    _fields_ = [("name", c_char_p), ("type", c_int), ("origin", c_int), ("has_value", c_int),
                ("is_required", c_int), ("number", c_double), ("text", c_char_p),
                ("allowed", c_char_p), ("position", POSITION)]


TEXTS = POINTER(c_char_p)
_HANDLE = c_void_p
_OUT = POINTER(c_void_p)

# Name, result, arguments. A status is a c_int.
_FUNCTIONS: tuple[tuple[Any, ...], ...] = (
    ("sbdc_version", c_char_p),
    ("sbdc_status_text", c_char_p, c_int),
    ("sbdc_document_new", c_int, _OUT),
    ("sbdc_document_free", None, _HANDLE),
    ("sbdc_read", c_int, _HANDLE, c_char_p),
    ("sbdc_read_text", c_int, _HANDLE, c_char_p, c_size_t, c_char_p),
    ("sbdc_finding_count", c_size_t, _HANDLE),
    ("sbdc_finding_at", POINTER(FINDING), _HANDLE, c_size_t),
    ("sbdc_text", c_void_p, _HANDLE, POINTER(c_size_t)),
    ("sbdc_find", c_int, _HANDLE, c_char_p, _OUT),
    ("sbdc_walk_new", c_int, _HANDLE, c_char_p, c_uint, _OUT),
    ("sbdc_walk_free", None, _HANDLE),
    ("sbdc_walk_next", c_int, _HANDLE, c_size_t, _OUT),
    ("sbdc_set_value", c_int, _HANDLE, c_char_p, c_char_p),
    ("sbdc_add_value", c_int, _HANDLE, c_char_p, c_char_p, c_int, c_char_p),
    ("sbdc_set_references", c_int, _HANDLE, c_char_p, TEXTS, c_size_t, c_int, c_char_p),
    ("sbdc_set_attributes", c_int, _HANDLE, c_char_p, TEXTS, TEXTS, c_size_t),
    ("sbdc_remove_parameter", c_int, _HANDLE, c_char_p),
    ("sbdc_add_block", c_int, _HANDLE, c_char_p, c_char_p, c_char_p, c_int, c_char_p),
    ("sbdc_remove_block", c_int, _HANDLE, c_char_p),
    ("sbdc_remove_references", c_int, _HANDLE, c_char_p),
    ("sbdc_rename", c_int, _HANDLE, c_char_p, c_char_p, c_int),
    ("sbdc_begin", c_int, _HANDLE),
    ("sbdc_commit", c_int, _HANDLE),
    ("sbdc_roll_back", c_int, _HANDLE),
    ("sbdc_verify", c_int, _HANDLE),
    ("sbdc_save", c_int, _HANDLE, c_char_p),
    ("sbdc_save_canonical", c_int, _HANDLE, c_char_p),
    ("sbdc_device_new", c_int, c_char_p, _OUT),
    ("sbdc_device_free", None, _HANDLE),
    ("sbdc_device_read", c_int, _HANDLE, c_char_p),
    ("sbdc_device_read_text", c_int, _HANDLE, c_char_p, c_size_t, c_char_p),
    ("sbdc_device_finding_count", c_size_t, _HANDLE),
    ("sbdc_device_finding_at", POINTER(FINDING), _HANDLE, c_size_t),
    ("sbdc_device_chip", c_char_p, _HANDLE),
    ("sbdc_device_module", c_char_p, _HANDLE),
    ("sbdc_device_parameter_count", c_size_t, _HANDLE),
    ("sbdc_device_parameter", POINTER(DEVICE_PARAMETER), _HANDLE, c_size_t),
    ("sbdc_device_clock", c_int, _HANDLE, c_int, POINTER(c_double)),
    ("sbdc_device_dpram_width", c_int, _HANDLE, c_int, POINTER(c_uint32)),
)


def _load() -> ctypes.CDLL:
    beside = pathlib.Path(__file__).with_name(LIBRARY_NAME)
    loaded = ctypes.CDLL(str(beside) if beside.exists() else LIBRARY_NAME)
    for name, result, *arguments in _FUNCTIONS:
        function = getattr(loaded, name)
        function.restype = result
        function.argtypes = arguments
    return loaded


library = _load()


def to_bytes(text: str) -> bytes:
    """For names and texts, which may hold bytes of a file that are not UTF-8."""
    encoded = text.encode("utf-8", "surrogateescape")
    if b"\0" in encoded:
        raise ValueError("a text with a NUL character")
    return encoded


def to_text(encoded: bytes | None) -> str:
    return "" if encoded is None else encoded.decode("utf-8", "surrogateescape")


def texts_of(values: Sequence[str | None]) -> ctypes.Array[c_char_p]:
    array = (c_char_p * len(values))()
    for index, value in enumerate(values):
        array[index] = None if value is None else to_bytes(value)
    return array
