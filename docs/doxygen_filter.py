#!/usr/bin/env python3
"""Gives Doxygen a header with its comments marked as documentation.

The headers are written for people who read them as they are. What belongs to what follows from the
layout: a comment above belongs to all declarations down to the next empty line or comment, and a
comment behind a declaration to that one, with the lines of comment that follow it further in. What is
named m_... is the library's own, as the comment of its record says, and what operators do goes without
saying. Nothing else has an excuse for having no comment.
"""

import pathlib
import re
import sys

ABOVE = re.compile(r"^(\s*)//(?!/) ?(.*)$")
BEHIND = re.compile(r"^(\s*[^/\s].*?\S)(\s+)// (.*)$")
C_ABOVE = re.compile(r"^(\s*)/\*(?!\*) ")
C_BEHIND = re.compile(r"^(\s*[^/\s].*?\S\s+)/\*(?!\*) ")
RULER = re.compile(r"^\s*(//|/\*) ----")
OPENS_SCOPE = re.compile(r"\b(class|struct|enum|namespace|union|extern)\b.*\{\s*(//.*)?$")


def mark_comments(lines):
    """The comments as documentation; those at the top of a file tell of the file."""
    behind = None  # Where the comment behind the line before stands.
    for line in lines:
        if RULER.match(line):
            behind = None
            yield ""
            continue
        above, with_code = ABOVE.match(line), BEHIND.match(line)
        if above and behind is not None and len(above.group(1)) >= behind - 2 and above.group(1):
            yield f"{above.group(1)}///< {above.group(2)}"
            continue
        behind = None
        if above:
            yield f"{above.group(1)}/// {above.group(2)}"
        elif with_code:
            behind = with_code.end(2)
            yield f"{with_code.group(1)}{with_code.group(2)}///< {with_code.group(3)}"
        elif C_BEHIND.match(line):
            yield C_BEHIND.sub(r"\1/**< ", line)
        else:
            yield C_ABOVE.sub(r"\1/** ", line)


OWN_DATA = re.compile(r"^ .*\bm_\w+( = [^()]*|\{[^()]*\})?;\s*$")
KEYWORD = re.compile(r"^extern SBD_API const char\* const SBD_VEL_(\w+);$")
ALLOCATOR = re.compile(r"^class \w+_ALLOCATOR \{")
OPERATOR = re.compile(r"^\s+.*\boperator\b.*[;{}]\s*$")


def leave_out_allocators(lines):
    """What every standard allocator has is told elsewhere."""
    is_inside = False
    for line in lines:
        if is_inside and line.startswith("};"):
            is_inside = False
            yield "/// @endcond"
        yield line
        if ALLOCATOR.match(line):
            is_inside = True
            yield "/// @cond"


def excuse_the_obvious(lines):
    """Keywords are what their names say; the library's own data and operators need no comment."""
    before = ""
    for line in lines:
        has_own = "///" in line or "/**" in line or is_comment(before) or before.lstrip() == "///@{"
        keyword = KEYWORD.match(line)
        if keyword and not has_own:
            line += f'  ///< "{keyword.group(1).lower()}"'
        elif not has_own and OWN_DATA.match(line):
            line += "  ///< The library's own."
        elif not has_own and OPERATOR.match(line):
            yield "/// As for every such type."
        before = line
        yield line


def is_comment(line):
    return line.lstrip().startswith(("///", "/**", "* ")) and "///<" not in line


def group_paragraphs(lines):
    """Declarations below one comment are one group, which has its documentation in common."""
    paragraph = []
    for line in list(lines) + [""]:
        starts_another = is_comment(line) and paragraph and not is_comment(paragraph[-1])
        if not line.strip() or starts_another:
            yield from group(paragraph)
            paragraph = []
        if line.strip():
            paragraph.append(line)
        else:
            yield ""


def group(paragraph):
    comment = [line for line in paragraph if is_comment(line)]
    code = paragraph[len(comment):]
    declarations = sum(line.split("//")[0].rstrip().endswith((";", "}", ",")) for line in code)
    is_group = comment and declarations > 1 and not any(OPENS_SCOPE.search(line) for line in code)
    balanced = sum(line.count("{") - line.count("}") for line in code) == 0
    if is_group and balanced:
        return ["///@{"] + paragraph + ["///@}"]
    return paragraph


text = pathlib.Path(sys.argv[1]).read_text()
lines = text.splitlines()
head = 0
while head < len(lines) and lines[head].startswith("//"):
    head += 1
about = ["/** @file"] + [line[2:] for line in lines[:head]] + ["*/"] if head else []
rest = group_paragraphs(mark_comments(leave_out_allocators(lines[head:])))
sys.stdout.write("\n".join(about + list(excuse_the_obvious(rest))) + "\n")
