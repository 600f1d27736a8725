#!/usr/bin/env python3
"""Makes the manual page sbd-descriptor(5) of docs/format.md.

usage: make_format_page.py docs/format.md docs/man/sbd-descriptor.5.in [--check]

The build puts date and version into it. With --check, nothing is written, unless SBD_UPDATE_GOLDEN=1
is in the environment; the exit status is 1 if the page is not what it should be.
"""

import os
import pathlib
import re
import sys

HEAD = """.\\" Made of docs/format.md by docs/make_format_page.py.
.TH SBD\\-DESCRIPTOR 5 "@SBD_ISSUE_DATE@" "sbd @PROJECT_VERSION@" "File Formats"
.SH NAME
sbd\\-descriptor \\- format of System Build Descriptor files
.SH DESCRIPTION
"""
ESCAPES = {"\\": "\\e", "-": "\\-", "'": "\\(aq", "`": "\\(ga", "^": "\\(ha", "~": "\\(ti",
           '"': "\\(dq"}


def escape(text):
    text = "".join(ESCAPES.get(c, c) for c in text)
    return "\\&" + text if text.startswith(".") else text


def inline(text):
    """Running text: code in bold, emphasis in italics, links as what they are named."""
    text = re.sub(r"\[([^\]]+)\]\([^)]*\)", r"\1", text)
    parts = re.split(r"(`[^`]+`|(?<![\w*])\*[^*]+\*)", text)
    out = ""
    for part in parts:
        if part.startswith("`"):
            out += "\\fB" + escape(part[1:-1]) + "\\fR"
        elif part.startswith("*") and len(part) > 2:
            out += "\\fI" + escape(part[1:-1]) + "\\fR"
        else:
            out += escape(part)
    return out


def cells(row):
    return [cell.strip() for cell in row.strip().strip("|").split("|")]


class Page:
    def __init__(self):
        self.out = []
        self.is_fresh = True  # Nothing stands in the section yet.

    def heading(self, line):
        level, title = re.match(r"(#+) (.*)", line).groups()
        if level == "##":
            self.out.append(".SH " + escape(title.upper()))
        else:
            self.out.append(".SS " + escape(title))
        self.is_fresh = True

    def begin_paragraph(self):
        if not self.is_fresh:
            self.out.append(".PP")
        self.is_fresh = False

    def example(self, lines):
        self.begin_paragraph()
        self.out += [".RS 4", ".nf"] + [escape(line) for line in lines] + [".fi", ".RE"]

    def table(self, rows):
        """Each row as a list of what it is about, and what is said of it."""
        for row in rows[2:]:
            first, *others = cells(row)
            self.out += [".TP", inline(first), "; ".join(inline(cell) for cell in others if cell)]
            if not any(others):
                self.out[-1] = "\\&"
        self.is_fresh = False

    def item(self, lines):
        number, text = re.match(r"(\d+\.) (.*)", " ".join(line.strip() for line in lines)).groups()
        self.out += [f".IP {number} 4", inline(text)]
        self.is_fresh = False

    def paragraph(self, lines):
        self.begin_paragraph()
        self.out.append(inline(" ".join(lines)))


def take_while(lines, pattern):
    taken = []
    while lines and re.match(pattern, lines[0]):
        taken.append(lines.pop(0))
    return taken


def make_page(text):
    lines = text.rstrip("\n").split("\n")[1:]
    page = Page()
    while lines:
        line = lines[0]
        if line.startswith("## See also"):
            break
        if not line or line.startswith("<!--"):
            lines.pop(0)
        elif line.startswith("#"):
            page.heading(lines.pop(0))
        elif line.startswith("```"):
            lines.pop(0)
            end = lines.index("```")
            page.example(lines[:end])
            del lines[:end + 1]
        elif line.startswith("    "):
            page.example([taken[4:] for taken in take_while(lines, "    ")])
        elif line.startswith("|"):
            page.table(take_while(lines, r"\|"))
        elif re.match(r"\d+\. ", line):
            page.item([lines.pop(0)] + take_while(lines, "   "))
        else:
            page.paragraph(take_while(lines, r"[^|#` ]|`[^`]"))
    page.out += [".SH SEE ALSO", "\\fBsbd\\fR(1), \\fBsbd\\-check\\fR(1), \\fBsbd\\-explain\\fR(1)"]
    return HEAD + "\n".join(page.out) + "\n"


source, target = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
made = make_page(source.read_text())
is_check = "--check" in sys.argv[3:] and os.environ.get("SBD_UPDATE_GOLDEN") != "1"
if not is_check:
    target.write_text(made)
elif not target.exists() or target.read_text() != made:
    sys.exit(f"{target.name} is not made of {source.name} as it is; make it anew:\n"
             "  python3 docs/make_format_page.py docs/format.md docs/man/sbd-descriptor.5.in")
