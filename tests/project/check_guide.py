#!/usr/bin/env python3
"""Fails when docs/guide.md shows other programs than those that the tests build and run.

With SBD_UPDATE_GOLDEN=1 in the environment the guide is rewritten instead.
"""

import os
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
guide = root / "docs" / "guide.md"
# A link to the program, and behind it the program itself.
SHOWN = re.compile(r"(\[(?P<program>\w+\.cpp)\]\([^)]*\)[^`]*```cpp\n)(.*?)(```)", re.DOTALL)

text = guide.read_text()
programs = {path.name for path in (root / "examples" / "programs").glob("*.cpp")}
shown = {match.group("program") for match in SHOWN.finditer(text)}
if shown != programs:
    sys.exit(f"shown, but not there, or the other way round: {sorted(shown ^ programs)}")


def as_it_is(match):
    program = root / "examples" / "programs" / match.group("program")
    return match.group(1) + program.read_text() + match.group(4)


current = SHOWN.sub(as_it_is, text)
if os.environ.get("SBD_UPDATE_GOLDEN") == "1":
    guide.write_text(current)
elif current != text:
    sys.exit("docs/guide.md shows a program as it was; rewrite it:\n"
             "  SBD_UPDATE_GOLDEN=1 ctest --test-dir build/release -R guide_shows")
