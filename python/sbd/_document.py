"""Documents: one descriptor file, to ask and to edit."""

from __future__ import annotations

import ctypes
import os
import threading
import weakref
from contextlib import contextmanager
from itertools import chain
from typing import Any, Callable, Iterator, Optional, Sequence, Union

from . import _native
from ._findings import Finding, make_findings, raise_for
from ._items import Block, Item, Parameter, Reference
from ._native import library, texts_of, to_bytes, to_text
from ._notation import Value, to_notation
from ._walk import Walk, items_of

Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]


def read(path: Path) -> "Document":
    """Reads a file.

    Raises UnreadableError when it can't be opened, and ReadError with all findings when it has
    faults."""
    document = Document()
    document._run("read", library.sbdc_read, os.fsencode(path))
    return document


def read_text(text: Union[str, bytes], name: str = "text") -> "Document":
    """Reads a text; ``name`` stands for the file in findings. Raises ReadError as ``read`` does."""
    encoded = text if isinstance(text, bytes) else text.encode("utf-8", "surrogateescape")
    document = Document()
    document._run("read", library.sbdc_read_text, encoded, len(encoded), to_bytes(name))
    return document


class Document:
    """A descriptor: its text, and the tree of blocks and parameters in it.

    Names are full names in any letter case, such as "board.stripe.sdram.data_width". Where the file
    has just one block at the top level, that one may be left out: "stripe.sdram.data_width".

    Edits change what they are about, and leave every other byte of the text as it was typed. A
    document may be used from several threads; they take turns."""

    def __init__(self) -> None:
        """An empty document; ``read`` and ``read_text`` make others."""
        self._handle = ctypes.c_void_p()
        self._lock = threading.RLock()
        self._top_level: Optional[list[str]] = None
        self._walks: weakref.WeakSet[Walk] = weakref.WeakSet()
        raise_for(library.sbdc_document_new(ctypes.byref(self._handle)), "new document", ())

    def __del__(self) -> None:
        library.sbdc_document_free(self._handle)

    # ---- Asking --------------------------------------------------------------------------------

    def __getitem__(self, name: str) -> Value:
        """The value of a parameter, or the targets of a reference statement as a tuple of names.
        KeyError when there is none of that name."""
        item = self.find(name)
        if isinstance(item, (Parameter, Reference)):
            return item.value
        raise KeyError(f"{name} (a block)")

    def get(self, name: str, default: Any = None) -> Any:
        """The same with a default for what is not there."""
        try:
            return self[name]
        except KeyError:
            return default

    def __contains__(self, name: object) -> bool:
        """Whether there is a block or statement of that name."""
        return isinstance(name, str) and self._find(name) is not None

    def find(self, name: str) -> Item:
        """The block, parameter or reference statement of that name, or KeyError."""
        found = self._find(name)
        if found is None:
            raise KeyError(name)
        return found

    def items(self, scope: Optional[str] = None) -> Iterator[Item]:
        """All blocks and statements in file order, or all below the block ``scope``."""
        return self._walk(scope, _native.BLOCK | _native.PARAMETER | _native.REFERENCE_STATEMENT)

    def blocks(self, scope: Optional[str] = None) -> Iterator[Block]:
        """All blocks, a block before what is in it."""
        return self._walk(scope, _native.BLOCK)

    def parameters(self, scope: Optional[str] = None) -> Iterator[Parameter]:
        """All parameters in file order."""
        return self._walk(scope, _native.PARAMETER)

    def references(self, scope: Optional[str] = None) -> Iterator[Reference]:
        """All reference statements in file order."""
        return self._walk(scope, _native.REFERENCE_STATEMENT)

    __iter__ = items

    @property
    def text(self) -> str:
        """The text as edited. Bytes that are not UTF-8 are escaped as by "surrogateescape"."""
        length = ctypes.c_size_t()
        with self._changing():
            address = library.sbdc_text(self._handle, ctypes.byref(length))
            if not address:
                raise MemoryError("text")
            return to_text(ctypes.string_at(address, length.value))

    @property
    def findings(self) -> tuple[Finding, ...]:
        """What the last call that changed something had to say, warnings included."""
        with self._lock:
            return make_findings(library.sbdc_finding_count, library.sbdc_finding_at, self._handle)

    # ---- Editing -------------------------------------------------------------------------------

    def __setitem__(self, name: str, value: Any) -> None:
        """Gives a parameter a value; one that is not there is added at the end of its block. A text
        keeps quotes that it has, and a new one has them if it needs them. Units are lost: see
        ``set_notation``."""
        full_name = self._full_name(name)
        notation = to_notation(value, self._has_quotes(full_name))
        self._run("set", library.sbdc_set_value, to_bytes(full_name), to_bytes(notation))

    def set_notation(self, name: str, notation: str) -> None:
        """The same with the value as it is to stand in the file: "50MHz", "0x40K"."""
        self._edit("set", library.sbdc_set_value, name, to_bytes(notation))

    def add(self, name: str, value: Any, *, before: Optional[str] = None,
            after: Optional[str] = None) -> None:
        """Adds a parameter at the end of its block, or right before or after a sibling, which is
        named by its own name."""
        self._edit("add", library.sbdc_add_value, name, to_bytes(to_notation(value)),
                   *_place(before, after))

    def set_references(self, name: str, targets: Sequence[str], *, before: Optional[str] = None,
                       after: Optional[str] = None) -> None:
        """Makes a reference statement refer to the targets, and to nothing else."""
        full_names = [self._full_name(target) for target in targets]
        if not full_names:
            raise ValueError("a reference statement needs a target")
        self._edit("set references", library.sbdc_set_references, name, texts_of(full_names),
                   len(full_names), *_place(before, after))

    def set_attributes(self, name: str, attributes: dict[str, Optional[str]]) -> None:
        """Replaces all attributes of a parameter. The format wants a "." in a value."""
        self._edit("set attributes", library.sbdc_set_attributes, name,
                   texts_of(list(attributes.keys())), texts_of(list(attributes.values())),
                   len(attributes))

    def __delitem__(self, name: str) -> None:
        """Removes a block, a parameter or a reference statement. EditError when it is referred to."""
        self.remove(name)

    def remove(self, name: str, *, with_references: bool = False) -> None:
        """The same; ``with_references`` removes references to it first."""
        item = self.find(name)
        is_block = isinstance(item, Block)
        remove = library.sbdc_remove_block if is_block else library.sbdc_remove_parameter
        with self._lock:
            if with_references:
                self._edit("remove references", library.sbdc_remove_references, item.name)
            self._edit("remove", remove, item.name)
            self._forget_top_level(item.name)

    def add_block(self, type: str, name: str, *, before: Optional[str] = None,
                  after: Optional[str] = None) -> None:
        """Adds a block of a type, such as "module". Put something into it before saving: the format
        has no form for an empty block."""
        parent, _, own_name = name.rpartition(".")
        if parent:
            parent = self._full_name(parent)
        self._run("add block", library.sbdc_add_block, to_bytes(type), to_bytes(own_name),
                  to_bytes(parent), *_place(before, after))
        self._forget_top_level(name)

    def rename(self, name: str, new_name: str, *, with_references: bool = True) -> None:
        """Gives a block or statement another own name; references to it follow."""
        full_name = self._full_name(name)
        self._edit("rename", library.sbdc_rename, name, to_bytes(new_name), int(with_references))
        self._forget_top_level(full_name)

    @contextmanager
    def edit(self) -> Iterator["Document"]:
        """All or nothing: an exception in the block takes all of its edits back, and goes on."""
        self._run("begin", library.sbdc_begin)
        try:
            yield self
        except BaseException:
            self._run("roll back", library.sbdc_roll_back)
            self._top_level = None
            raise
        self._run("commit", library.sbdc_commit)

    def verify(self) -> None:
        """EditError if the document can't be saved as it is."""
        self._run("verify", library.sbdc_verify)

    def save(self, path: Optional[Path] = None, *, canonical: bool = False) -> None:
        """Writes the text to a file, or to the one that was read: there is always either the old
        file or the new one, whole. ``canonical`` writes the library's own layout instead. EditError
        when the text does not mean what the document holds, or can't be written."""
        save = library.sbdc_save_canonical if canonical else library.sbdc_save
        self._run("save", save, None if path is None else os.fsencode(path))

    # ---- Inside --------------------------------------------------------------------------------

    def _run(self, what: str, function: Callable[..., int], *arguments: Any) -> None:
        with self._changing():
            status = function(self._handle, *arguments)
            if status != _native.OK:
                raise_for(status, what, self.findings)

    def _edit(self, what: str, function: Callable[..., int], name: str, *arguments: Any) -> None:
        with self._changing():
            full_name = to_bytes(self._full_name(name))
            status = function(self._handle, full_name, *arguments)
            if status == _native.NOT_FOUND:
                raise KeyError(name)
            raise_for(status, what, self.findings if status != _native.OK else ())

    @contextmanager
    def _changing(self) -> Iterator[None]:
        """For calls that may change the document: those who are on their way through it get
        what they have not come to yet as it is now."""
        with self._lock:
            for walk in list(self._walks):
                walk.take_rest()
            self._walks.clear()
            yield

    def _find(self, name: str) -> Optional[Item]:
        handle = ctypes.c_void_p()
        with self._lock:
            status = library.sbdc_find(self._handle, to_bytes(self._full_name(name)),
                                       ctypes.byref(handle))
        if status == _native.NOT_FOUND:
            return None
        raise_for(status, name, ())
        return next(items_of(handle))

    def _walk(self, scope: Optional[str], kinds: int) -> Iterator[Any]:
        block = None if scope is None else to_bytes(self._full_name(scope))
        with self._lock:
            handle = ctypes.c_void_p()
            status = library.sbdc_walk_new(self._handle, block, kinds, ctypes.byref(handle))
            if status == _native.NOT_FOUND:
                raise KeyError(scope)
            if status == _native.WRONG_KIND:
                raise KeyError(f"{scope} (not a block)")
            raise_for(status, "list", ())
            walk = Walk(self, self._lock, handle)
            self._walks.add(walk)
        return chain.from_iterable(walk)

    def _forget_top_level(self, changed: str) -> None:
        """Finding it means to go through the whole document, so that is put off."""
        if "." not in changed:
            self._top_level = None

    def _has_quotes(self, full_name: str) -> bool:
        item = self._find(full_name)
        return isinstance(item, Parameter) and item.kind == "string"

    def _full_name(self, name: str) -> str:
        if self._top_level is None:
            self._top_level = [block.name.lower() for block in self.blocks() if not block.depth]
        first = name.partition(".")[0].lower()
        if len(self._top_level) != 1 or first in self._top_level:
            return name
        return f"{self._top_level[0]}.{name}"


def _place(before: Optional[str], after: Optional[str]) -> tuple[int, Optional[bytes]]:
    if before is not None and after is not None:
        raise ValueError("either before or after")
    if before is not None:
        return _native.BEFORE, to_bytes(before)
    if after is not None:
        return _native.BEHIND, to_bytes(after)
    return _native.AT_END, None
