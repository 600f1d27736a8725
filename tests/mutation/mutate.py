#!/usr/bin/env python3
"""Changes one constant or comparison after the other, and looks whether a test notices.

For each change the file is compiled again, the library is linked anew in a folder of its own, and
the test programs of a finished build are run with that library until one of them fails. What was
tried is kept in BUILD/mutation/results.jsonl, so that a later run goes on from there; changes that
no test can notice are listed with their reasons in equivalent.txt beside this script.

Usage: mutate.py BUILD_FOLDER [--most N] [--again] [FILE...]
"""

import argparse
import json
import os
import random
import re
import shlex
import subprocess
import sys
import time
from collections import Counter
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

FILES = [
    "sbd/device/sbd_chip_value_rules.cpp",
    "sbd/device/sbd_decimal.h",
    "sbd/device/sbd_family_value_rules.cpp",
    "sbd/device/sbd_parameter_place.cpp",
    "sbd/device/sbd_parameter_rules.cpp",
    "sbd/device/sbd_parameter_rules_text.cpp",
    "sbd/device/sbd_qmxa_parameter_readers.cpp",
    "sbd/device/sbd_requirement_rules.cpp",
    "sbd/device/sbd_row_names.cpp",
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
    "sbd/parameter/sbd_parameter_reader.cpp",
    "sbd/parameter/sbd_parameter_reader_read.cpp",
    "sbd/parameter/sbd_parameter_store.cpp",
    "sbd/parameter/sbd_parameter_value.cpp",
]

# The quick ones first.
TESTS = [
    "message_catalogue_test",
    "parameter_reader_test",
    "class_layout_test",
    "device_object_test",
    "clocks_test",
    "rules_query_test",
    "examples_test",
    "random_settings_test",
    "table_driven_test",
    "device_exhaustion_test",
]
SECONDS_OF_A_TEST = 120  # A program that takes longer hangs, which is noticed as well.

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


def keywords():
    text = (ROOT / "sbd/device/sbd_veldran_keyword_texts.h").read_text()
    return sorted(set(re.findall(r"constexpr char (\w+)\[\]", text)))


def is_template_sign(source, at):
    """A "<" or ">" with no blank on both sides belongs to template arguments."""
    return not (source[at - 1] == " " and source[at + 1 : at + 2] in (" ", "\n"))


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
        return [f"{float(digits) + 1}"]
    value = int(digits, 0)
    return [f"{value + 1}{suffix}"] + ([f"{value - 1}{suffix}"] if value > 0 else [])


def changed_text(text):
    """Another first letter; an empty text gets one."""
    if text == '""':
        return '"x"'
    return '"' + ("y" if text[1] != "y" else "z") + (text[3:] if text[1] == "\\" else text[2:])


def changes_of(file):
    """What can be changed: (offset, old, new)."""
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
            if old not in "<>" or not is_template_sign(source, at):
                new = SWAPPED_SIGNS[old]
        # Where a constant of the table is defined, its own name stays.
        if new and kind == "word" and re.match(r"\s*(\[\])?\s*=", source[match.end() :]):
            continue
        for one in new:
            yield at, old, one


def name_of(file, at, old, new):
    """The same as long as the line is, whatever happens to the lines around."""
    source = (ROOT / file).read_text()
    begin = source.rfind("\n", 0, at) + 1
    line = source[begin : source.find("\n", at)]
    return f"{file} | {line.strip()} | column {at - begin}: {old} -> {new}"


class Library:
    """The library with one file changed."""

    def __init__(self, build):
        self.build = build
        self.folder = build / "mutation"
        self.include = self.folder / "include"
        (self.folder / "lib").mkdir(parents=True, exist_ok=True)
        commands = json.loads((build / "compile_commands.json").read_text())
        self.compile = {}
        for entry in commands:
            source = os.path.relpath(Path(entry["directory"], entry["file"]).resolve(), ROOT)
            if "sbd_objects.dir" in entry["command"]:
                self.compile[source] = shlex.split(entry["command"])
        self.objects = {s: self._object_of(c) for s, c in self.compile.items()}

    def _object_of(self, command):
        return self.build / command[command.index("-o") + 1]

    def users_of(self, file):
        """The source files that a file is part of."""
        if file.endswith(".cpp"):
            return [file]
        seen, waiting = set(), [file]
        everything = [p for p in ROOT.glob("sbd/**/*") if p.suffix in (".h", ".cpp")]
        texts = {os.path.relpath(p, ROOT): p.read_text() for p in everything}
        while waiting:
            wanted = waiting.pop()
            for name, text in texts.items():
                if name not in seen and f'#include "{wanted}"' in text:
                    seen.add(name)
                    waiting.append(name)
        return sorted(name for name in seen if name in self.compile)

    def make(self, file, source):
        """False when the change is none that compiles."""
        changed = self.include / file
        changed.parent.mkdir(parents=True, exist_ok=True)
        changed.write_text(source)
        try:
            objects = dict(self.objects)
            for user in self.users_of(file):
                objects[user] = self.folder / (Path(user).name + ".o")
                if not self._compile(user, changed if user == file else ROOT / user, objects[user]):
                    return False
            return self._link(objects.values())
        finally:
            changed.unlink()

    def _compile(self, user, source, result):
        command = [a for a in self.compile[user] if a not in ("-O3", "-O2") and "ccache" not in a]
        command = [a for a in command if not a.startswith("-W")]
        command[command.index("-o") + 1] = str(result)
        command[command.index("-c") + 1] = str(source)
        command[1:1] = ["-O0", "-w", "-I", str(self.include), "-I", str(ROOT)]
        return subprocess.run(command, cwd=self.build, capture_output=True).returncode == 0

    def _link(self, objects):
        name = os.readlink(self.build / "lib" / "libsbd.so")
        command = ["g++", "-shared", "-fuse-ld=lld", f"-Wl,-soname,{name}"]
        command += ["-Wl,-Bsymbolic-functions", "-o", str(self.folder / "lib" / name)]
        command += [str(o) for o in objects]
        return subprocess.run(command, capture_output=True).returncode == 0

    def failing_test(self, tests):
        """The first test program that notices; null if none does."""
        environment = dict(os.environ, LD_LIBRARY_PATH=str(self.folder / "lib"))
        for test in tests:
            command = [str(self.build / "bin" / test), "--gtest_brief=1", "--gtest_fail_fast"]
            try:
                done = subprocess.run(command, env=environment, capture_output=True,
                                      timeout=SECONDS_OF_A_TEST, cwd=self.folder)
            except subprocess.TimeoutExpired:
                return test
            if done.returncode != 0:
                return test
        return None


def known_equivalents():
    path = Path(__file__).with_name("equivalent.txt")
    lines = path.read_text().splitlines() if path.exists() else []
    return {line for line in lines if line and not line.startswith("#")}


def read_results(path):
    if not path.exists():
        return {}
    return {r["name"]: r for r in map(json.loads, path.read_text().splitlines())}


def report(results, names):
    equivalent = known_equivalents()
    count = {}
    survivors = []
    for name in names:
        if name not in results:
            continue
        file = name.split(" | ")[0]
        state = results[name]["state"]
        if state == "survived":
            state = "equivalent" if name in equivalent else state
            if state == "survived":
                survivors.append(name)
        count.setdefault(file, Counter())[state] += 1
    total = sum(count.values(), Counter())
    print(f"{'file':48} {'killed':>7} {'equal':>6} {'not C++':>8} {'survived':>9}")
    for file, c in sorted(count.items()) + [("all", total)]:
        print(f"{file:48} {c['killed']:7} {c['equivalent']:6} {c['invalid']:8} {c['survived']:9}")
    counted = total["killed"] + total["survived"]
    if counted:
        print(f"score {100 * total['killed'] / counted:.1f} %, of {counted} changes; "
              f"{len(names)} are possible")
    for name in survivors:
        print("survived:", name)
    return not survivors


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=Path)
    parser.add_argument("--most", type=int, help="stop after so many changes")
    parser.add_argument("--again", action="store_true", help="try the survivors again")
    parser.add_argument("--report", action="store_true", help="only tell what is known")
    parser.add_argument("files", nargs="*")
    options = parser.parse_args()
    library = Library(options.build.resolve())
    path = library.folder / "results.jsonl"
    results = read_results(path)
    changes = [(f, *c) for f in options.files or FILES for c in changes_of(f)]
    names = list(dict.fromkeys(name_of(*change) for change in changes))
    if options.report:
        return 0 if report(results, names) else 1

    tests = [t for t in TESTS if (library.build / "bin" / t).exists()]
    for file in {change[0] for change in changes}:
        source = (ROOT / file).read_text()
        if not library.make(file, source):
            sys.exit(f"{file} does not compile as it is")
    noticed = library.failing_test(tests)
    if noticed:
        sys.exit(f"{noticed} fails without any change")

    # In an order of its own, so that a run that is cut short is a fair sample.
    random.Random(1).shuffle(changes)
    favourite = {}
    for done, (file, at, old, new) in enumerate(changes):
        if options.most is not None and done >= options.most:
            break
        name = name_of(file, at, old, new)
        known = results.get(name)
        if known and not (options.again and known["state"] == "survived"):
            continue
        source = (ROOT / file).read_text()
        begin = time.monotonic()
        result = {"name": name, "state": "invalid"}
        if library.make(file, source[:at] + new + source[at + len(old) :]):
            first = favourite.get(file, tests[0])
            test = library.failing_test([first] + [t for t in tests if t != first])
            result.update(state="killed" if test else "survived", by=test)
            if test:
                favourite[file] = test
        result["seconds"] = round(time.monotonic() - begin, 2)
        results[name] = result
        with path.open("a") as file_of_results:
            file_of_results.write(json.dumps(result) + "\n")
        if result["state"] == "survived":
            print("survived:", name, flush=True)
    return 0 if report(results, names) else 1


if __name__ == "__main__":
    sys.exit(main())
