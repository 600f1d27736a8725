"""Ways through a document, from one part of its items to the next."""

from __future__ import annotations

import ctypes
from collections import deque
from typing import Any, Iterator, Optional

from . import _items, _native
from ._findings import raise_for
from ._items import Item
from ._native import library

# So many that the calls do not count, and so few that the memory for them stays in the caches.
_ITEMS_OF_PART = 256


def items_of(listing: ctypes.c_void_p) -> Iterator[Item]:
    """The items of a listing, which is theirs from now on."""
    return _items.items_of(listing.value or 0)


class Walk:
    """Gives the items part by part. What it gives is the state of the document when it began: before
    the document changes, it is told to take what is left."""

    def __init__(self, document: object, lock: Any, handle: ctypes.c_void_p) -> None:
        """``handle`` is that of the library, and belongs to the walk."""
        self._document = document  # Has to be there as long as the handle is used.
        self._lock = lock
        self._handle = handle
        self._taken: deque[Iterator[Item]] = deque()

    def __del__(self) -> None:
        library.sbdc_walk_free(self._handle)

    def __iter__(self) -> Walk:
        return self

    def __next__(self) -> Iterator[Item]:
        with self._lock:
            part = self._taken.popleft() if self._taken else self._next()
        if part is None:
            raise StopIteration
        return part

    def take_rest(self) -> None:
        """Gets all that is left; from then on the walk does not look at the document."""
        part = self._next()
        while part is not None:
            self._taken.append(part)
            part = self._next()

    def _next(self) -> Optional[Iterator[Item]]:
        if not self._handle:
            return None
        listing = ctypes.c_void_p()
        status = library.sbdc_walk_next(self._handle, _ITEMS_OF_PART, ctypes.byref(listing))
        if status == _native.OK:
            return items_of(listing)
        library.sbdc_walk_free(self._handle)
        self._handle = ctypes.c_void_p()
        if status != _native.NOT_FOUND:
            raise_for(status, "list", ())
        return None
