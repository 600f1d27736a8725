#!/usr/bin/env python3
"""Fails when a folder includes what it must not know.

docs/architecture.md draws the same directions; the two change together.
"""

import pathlib
import re
import sys

KNOWS = {
    "capi": {"capi", "h", "host", "sbd"},
    "python": {"capi", "python"},
    "h": {"h"},
    "host": {"h", "host"},
    "sbd": {"h", "sbd"},
    "tools": {"h", "host", "sbd", "tools"},
    "bench": {"h", "host", "sbd", "bench"},
}
# Folders of the library: each may include itself and those named here.
LIBRARY_KNOWS = {
    "diagnostics": set(),
    "reading": {"diagnostics"},
    "access": {"diagnostics", "reading"},
    "source": {"diagnostics", "reading", "access"},
    "parameter": {"diagnostics", "reading", "access"},
    "device": {"diagnostics", "reading", "access", "parameter"},
}

root = pathlib.Path(sys.argv[1])
faults = []
checked = 0
for folder, known in KNOWS.items():
    for file in sorted(root.glob(f"{folder}/**/*.h")) + sorted(root.glob(f"{folder}/**/*.cpp")):
        checked += 1
        parts = file.relative_to(root).parts
        for line in file.read_text().splitlines():
            include = re.match(r'\s*#include "([^"]+)"', line)
            if not include:
                continue
            target = include.group(1).split("/")
            place = file.relative_to(root)
            if target[0] not in known:
                faults.append(f"{place} includes {include.group(1)}")
            is_inner = target[0] == "sbd" and len(target) == 3
            if is_inner and parts[0] != "sbd":
                faults.append(f"{place} includes {include.group(1)}, which is not public")
            elif is_inner and len(parts) == 2:
                faults.append(f"{place}, a public header, includes {include.group(1)}")
            elif is_inner and target[1] not in LIBRARY_KNOWS[parts[1]] | {parts[1]}:
                faults.append(f"{place} includes {include.group(1)}")

# The page that explains the directions shows the same ones.
shown = {}
page = (root / "docs" / "architecture.md").read_text()
for folder, known in re.findall(r"^\| `([a-z/]+)` \| ([^|]*)\|$", page, re.MULTILINE):
    shown[folder] = set(re.findall(r"`([a-z]+)`", known))
drawn = {**KNOWS, **{f"sbd/{folder}": known for folder, known in LIBRARY_KNOWS.items()}}
if shown != drawn:
    faults.append("docs/architecture.md shows other directions")
if not checked:
    faults.append("no file found")
sys.exit("\n".join(faults) if faults else 0)
