#!/usr/bin/env python3
"""Fails when a manual page does not say what `--help` says, or the other way round.

Arguments: the tool, and the folder with the pages.
"""

import pathlib
import re
import subprocess
import sys

tool, folder = sys.argv[1], pathlib.Path(sys.argv[2])
faults = []


def get_help(*command):
    return subprocess.run([tool, *command, "--help"], check=True, text=True,
                          capture_output=True).stdout


def get_section(text, title):
    """The indented lines of help below a title."""
    match = re.search(rf"^{title}:\n((?:[ ].*\n)+)", text, re.MULTILINE)
    return match.group(1) if match else ""


def read_page(name):
    """The words of a page, without the language of the formatter."""
    text = (folder / f"{name}.1").read_text()
    text = re.sub(r"^\.(TH|SH|SS) ", "", text, flags=re.MULTILINE)
    text = re.sub(r"^\.(PP|TP|br|nf|fi|RS.*|RE)\n", "", text, flags=re.MULTILINE)
    text = re.sub(r"\\f[BIR]|\\&", "", text)
    for escape, plain in {r"\-": "-", r"\(aq": "'", r"\(ga": "`", r"\(ha": "^", r"\(ti": "~",
                          r"\(dq": '"', r"\e": "\\"}.items():
        text = text.replace(escape, plain)
    return text


def flatten(text):
    return " ".join(text.split())


def expect(name, page, phrase):
    if flatten(phrase) not in page:
        faults.append(f"{name}.1 does not say: {flatten(phrase)}")


def split_entries(section):
    """Pairs of what stands on the left, and the description on the right.

    In one case, help leaves no more than a blank between them.
    """
    for entry in re.split(r"\n(?=  \S)", "\n" + section.rstrip("\n")):
        match = re.match(r"\s*(\S.*?)(?:\s{2,}|\n\s+| REQUIRED +| (?=Remove ))(\S.*)", entry, re.DOTALL)
        if match:
            yield match.group(1), match.group(2)


def check_arguments(name, page, text):
    for left, description in split_entries(get_section(text, "Positionals")):
        expect(name, page, f"{left.split()[0]}")
        expect(name, page, description)
    for left, description in split_entries(get_section(text, "Options")):
        names = left.split()[0]
        value = re.match(r"\S+ ([A-Z=]+)(?![a-z])", left)
        heading = names.replace(",", ", ") + (f" {value.group(1)}" if value else "")
        expect(name, page, f"{heading} {flatten(description)}".removesuffix(" "))


def check_page(name, command):
    text = get_help(*command)
    raw = read_page(name)
    page = flatten(raw)
    usage = re.search(r"^Usage: (.*)", text, re.MULTILINE).group(1)
    expect(name, page, text.splitlines()[0])
    if "SUBCOMMAND" not in usage:
        # A page has a blank before an ellipsis, and brackets around what is optional.
        expect(name, re.sub(r"[\[\] .]", "", page), re.sub(r"[\[\] .]", "", usage))
    check_arguments(name, page, text)
    footer = text[text.rindex("Print this help message"):]
    for line in re.split(r"\n\n", footer, maxsplit=1)[1].splitlines():
        is_heading = line in ("Examples:", "Exit codes:", "Subcommands:")
        is_code = re.match(r"  \d  |  \w+ {10,}", line) is not None
        if line and not is_heading and not is_code:
            expect(name, page, line)
    return text, raw


def check_option_names(name, texts, raw):
    """The page has the options of help and no other."""
    of_help = set()
    for text in texts:
        for left, _ in split_entries(get_section(text, "Options")):
            of_help.update(left.split()[0].split(","))
    of_page = set(re.findall(r"^(?:-\w, )?(--?[\w-]+)(?: [A-Z=]+)?$", raw, re.MULTILINE))
    of_page |= set(re.findall(r"^(-\w), --", raw, re.MULTILINE))
    if of_help != of_page:
        faults.append(f"{name}.1 has other options than help: {sorted(of_help ^ of_page)}")


help_text, raw_page = check_page("sbd", [])
check_option_names("sbd", [help_text], raw_page)
commands = [left for left, _ in split_entries(get_section(help_text, "Subcommands"))]
for code, meaning in re.findall(r"^  (\d)  (.*)", help_text, re.MULTILINE):
    for command_name in ["sbd"] + [f"sbd-{command}" for command in commands]:
        expect(command_name, flatten(read_page(command_name)), f"{code} {meaning}.")
for command in commands:
    page_name = f"sbd-{command}"
    help_text, raw_page = check_page(page_name, [command])
    texts = [help_text]
    for below, _ in split_entries(get_section(help_text, "Subcommands")):
        texts.append(check_page(page_name, [command, below])[0])
    check_option_names(page_name, texts, raw_page)

pages = {path.stem for path in folder.glob("*.1")}
if pages != {"sbd"} | {f"sbd-{command}" for command in commands}:
    faults.append(f"the pages are {sorted(pages)}")
if len(commands) < 10:
    faults.append(f"help names these commands only: {commands}")
for fault in faults:
    print(fault)
sys.exit(1 if faults else 0)
