#!/usr/bin/env python3
"""Fails when a shared library exports other symbols than the list says that it does.

check_exports.py LIBRARY LIST. With SBD_UPDATE_GOLDEN=1 in the environment the list is rewritten
instead. A symbol that is gone from it breaks programs that were linked before.
"""

import os
import pathlib
import re
import subprocess
import sys

HOW_TO_UPDATE = ("If this is meant (see docs/compatibility.md), rewrite the lists:\n"
                 "  SBD_UPDATE_GOLDEN=1 ctest --test-dir build/release -R exports")

# What templates and inline functions leave behind depends on the compiler, and no program relies on
# finding it in the library.
BY_THE_WAY = re.compile(r"^(typeinfo (name )?for |vtable for )?std::")

# As the headers call them.
STRING = ("std::__cxx11::basic_string<char, std::char_traits<char>, "
          "MEM_STL_ALLOCATOR<char, SBD_MEMORY_MODULE> >")
SHORT_NAMES = (
    (STRING, "SBD_STRING"),
    ("std::__cxx11::list<SBD_STRING, MEM_STL_ALLOCATOR<SBD_STRING, SBD_MEMORY_MODULE> >",
     "SBD_STRING_LIST"),
    ("std::basic_string_view<char, std::char_traits<char> >", "std::string_view"),
    ("[abi:cxx11]", ""),
)


def exported_symbols(library):
    lines = subprocess.run(["nm", "-DC", "--defined-only", library], check=True,
                           capture_output=True, text=True).stdout.splitlines()
    symbols = set()
    for line in lines:
        _, kind, name = line.split(" ", 2)
        if kind in "Wu" or BY_THE_WAY.match(name):
            continue
        for long_name, short_name in SHORT_NAMES:
            name = name.replace(long_name, short_name)
        symbols.add(name)
    return symbols


library, list_file = sys.argv[1], pathlib.Path(sys.argv[2])
symbols = exported_symbols(library)
if not symbols:
    sys.exit("no symbol found")
if os.environ.get("SBD_UPDATE_GOLDEN") == "1":
    list_file.write_text("".join(f"{name}\n" for name in sorted(symbols)))
    sys.exit(0)

listed = set(list_file.read_text().splitlines())
faults = [f"exported, but not listed: {name}" for name in sorted(symbols - listed)]
faults += [f"listed, but not exported: {name}" for name in sorted(listed - symbols)]
if faults:
    sys.exit("\n".join([f"{list_file}:"] + faults + [HOW_TO_UPDATE]))
