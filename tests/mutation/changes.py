"""What can be changed in the sources, and how a change is called."""

import re
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parents[2]

FILES = [
    "sbd/device/sbd_chip_value_rules.cpp",
    "sbd/device/sbd_decimal.h",
    "sbd/device/sbd_family_value_rules.cpp",
    "sbd/device/sbd_parameter_place.cpp",
    "sbd/device/sbd_parameter_rules.cpp",
    "sbd/device/sbd_parameter_rules_text.cpp",
    "sbd/device/sbd_qmxa_parameter_readers.cpp",
    "sbd/device/sbd_reference.h",
    "sbd/device/sbd_requirement_rules.cpp",
    "sbd/device/sbd_row_names.cpp",
    "sbd/device/sbd_row_names.h",
    "sbd/device/sbd_rule_table.h",
    "sbd/device/sbd_rules.cpp",
    "sbd/device/sbd_value_sets.h",
    "sbd/device/sbd_veldran.cpp",
    "sbd/device/sbd_veldran_derived.cpp",
    "sbd/device/sbd_veldran_keyword_texts.h",
    "sbd/device/sbd_veldran_keywords.cpp",
    "sbd/device/sbd_veldran_parameter_reader.cpp",
    "sbd/device/sbd_veldran_parameter_tables.cpp",
    "sbd/diagnostics/msg_sbd.cpp",
    "sbd/diagnostics/sbd_messages.h",
    "sbd/parameter/sbd_parameter_reader.cpp",
    "sbd/parameter/sbd_parameter_reader_read.cpp",
    "sbd/parameter/sbd_parameter_store.cpp",
    "sbd/parameter/sbd_parameter_store.h",
    "sbd/parameter/sbd_parameter_value.cpp",
]

SWAPPED_WORDS = {
    "true": ["false"],
    "false": ["true"],
    "k_optional": ["k_always"],
    "k_always": ["k_optional"],
    "k_by_rule": ["k_optional"],
    "k_every_chip": ["k_qmxa4"],
    "k_qmxa1": ["k_qmxa4"],
    "k_qmxa4": ["k_qmxa10"],
    "k_qmxa10": ["k_qmxa1"],
    "k_any_value": ["k_false_only"],
    "k_false_only": ["k_any_value"],
    "sbd_is_true": ["sbd_is_false"],
    "sbd_is_false": ["sbd_is_true"],
    "sbd_is_text": ["sbd_is_not_text"],
    "sbd_is_not_text": ["sbd_is_text"],
}
SWAPPED_SIGNS = {
    "==": ["!="],
    "!=": ["=="],
    "<": ["<=", ">="],
    "<=": ["<", ">"],
    ">": [">=", "<="],
    ">=": [">", "<"],
    "&&": ["||"],
    "||": ["&&"],
}

TOKEN = re.compile(
    r"""(?P<skip>//[^\n]*|/\*.*?\*/|^[ \t]*\#[^\n]*|\bstatic_assert\b[^;]*;|'(?:[^'\\]|\\.)')
      |(?P<text>"(?:[^"\\]|\\.)*")
      |(?P<number>\b(?:0[xX][0-9a-fA-F]+|[0-9]+(?:\.[0-9]+)?)[uUlL]*\b)
      |(?P<word>[A-Za-z_]\w*)
      |(?P<sign>->|<<|>>|<=|>=|==|!=|&&|\|\||<|>)""",
    re.X | re.S | re.M,
)


class CHANGE(NamedTuple):
    file: str
    at: int  # Where `old` stands in the file.
    old: str
    new: str
    name: str

    def source(self):
        """The file with the change."""
        source = (ROOT / self.file).read_text()
        return source[: self.at] + self.new + source[self.at + len(self.old) :]


def keywords():
    text = (ROOT / "sbd/device/sbd_veldran_keyword_texts.h").read_text()
    return sorted(set(re.findall(r"constexpr char (\w+)\[\]", text)))


def is_operator(source, begin, end):
    """What has no blank on both sides belongs to a type: to template arguments, or a reference."""
    return source[begin - 1] == " " and source[end] in " \n"


def other_keyword(word, all_keywords):
    """One that ends alike, if there is any: it is the likeliest mistake."""
    stem = re.sub(r"\d+$", "", word)
    alike = [k for k in all_keywords if k != word and re.sub(r"\d+$", "", k) == stem]
    if alike:
        return alike[0]
    return "PREFETCH" if word == "ENABLED" else "ENABLED"


def changed_numbers(number):
    digits = number.rstrip("uUlL")
    suffix = number[len(digits) :]
    if "." in digits:
        return [f"{2 * float(digits) + 1}{suffix}"]
    value = int(digits, 0)
    return [f"{value + 1}{suffix}"] + ([f"{value - 1}{suffix}"] if value > 0 else [])


def changed_text(text):
    """Another first letter; an empty text gets one."""
    if text == '""':
        return '"x"'
    return '"' + ("y" if text[1] != "y" else "z") + (text[3:] if text[1] == "\\" else text[2:])


def name_of(file, source, at, old, new):
    """The same as long as the line is, whatever happens to the lines around."""
    begin = source.rfind("\n", 0, at) + 1
    line = source[begin : source.find("\n", at)]
    equal_lines = source[:begin].splitlines().count(line)
    which = f"occurrence {equal_lines + 1}, " if equal_lines else ""
    return f"{file} | {line.strip()} | {which}column {at - begin}: {old} -> {new}"


def changes_of(file):
    """Every change of the file."""
    source = (ROOT / file).read_text()
    all_keywords = keywords()
    has_keywords = not file.endswith(("keyword_texts.h", "keywords.cpp"))
    for match in TOKEN.finditer(source):
        old, at = match.group(), match.start()
        kind = match.lastgroup
        new = []
        if kind == "text":
            new = [changed_text(old)]
        elif kind == "number":
            new = changed_numbers(old)
        elif kind == "word" and old in SWAPPED_WORDS:
            new = SWAPPED_WORDS[old]
        elif kind == "word" and old in all_keywords and has_keywords:
            new = [other_keyword(old, all_keywords)]
        elif kind == "sign" and old in SWAPPED_SIGNS:
            new = SWAPPED_SIGNS[old] if is_operator(source, at, match.end()) else []
        # Where a constant of the table is defined, its own name stays.
        if new and kind == "word" and re.match(r"\s*(\[\])?\s*=", source[match.end() :]):
            continue
        for one in new:
            yield CHANGE(file, at, old, one, name_of(file, source, at, old, one))
