#!/usr/bin/env python3
"""Runs the examples of a document, and fails where they print something else than it says.

Arguments: the document, the tool, the folder with the examples, and perhaps "every-option": then the
document has to have something about each option of the tool. What is looked at:

- "```console" and "```" blocks, and indented ones, that begin with "$ ": each command is run by bash,
  all of a document in one shell and one empty folder, which has the "examples" and a home folder in
  it. A line "> ..." goes on with the command. Output and errors have to be what follows; a line "..."
  stands for any lines.
- "```sbd" blocks: descriptors, which have to be without faults of format. With "statements" behind
  that, they are members of a block "example"; a name behind it is that of a file to write them to.
- "```sh" blocks with a name: files that later commands use.
- "```yaml" blocks: they have to be YAML, and where they "run" the tool, that has to work.
- "<!-- run: COMMAND -->": a command that prepares an example, unseen by readers.
- Everywhere in code, "sbd COMMAND ... --option": the command has to have that option.

Exit status 77 where the document uses git, and there is none. With SBD_UPDATE_GOLDEN=1 in the
environment the outputs in the document are rewritten instead.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

try:
    import yaml
except ImportError:
    yaml = None

document, tool, examples = (pathlib.Path(name).resolve() for name in sys.argv[1:4])
is_update = os.environ.get("SBD_UPDATE_GOLDEN") == "1"
MARK = "\x01"
faults = []


def report(number, text):
    faults.append(f"{document.name}:{number + 1}: {text}")


class Command:
    """A command with what the document says of its output."""

    def __init__(self, number, text, indent):
        self.number = number  # Of its line; that of the output follows.
        self.text = text
        self.indent = indent
        self.expected = []
        self.output_begin = number + 1


class Document:
    def __init__(self, lines):
        self.lines = lines
        self.steps = []  # Commands, and texts of shell scripts without expectations.
        self.code = []  # Pairs of line number and line.
        self.read()

    def read(self):
        number = 0
        while number < len(self.lines):
            line = self.lines[number]
            hidden = re.match(r"<!-- run: (.*) -->$", line)
            if hidden:
                self.steps.append(hidden.group(1) + " || echo 'preparation failed'")
            fence = re.match(r"```(.*)$", line)
            if fence:
                end = self.lines.index("```", number + 1)
                self.read_fence(fence.group(1).split(), number + 1, end)
                number = end
            elif re.match(r"    \S", line) and self.is_behind_blank(number):
                end = number
                while end < len(self.lines) and re.match(r"    |$", self.lines[end]):
                    end += 1
                while not self.lines[end - 1]:
                    end -= 1
                self.read_console(number, end, "    ")
                number = end - 1
            number += 1

    def is_behind_blank(self, number):
        return number == 0 or not self.lines[number - 1]

    def read_fence(self, info, begin, end):
        language = info[0] if info else ""
        if language in ("", "console"):
            self.read_console(begin, end, "")
        elif language == "sbd":
            self.read_descriptor(info[1:], begin, end)
        elif language == "yaml":
            self.read_yaml(begin, end)
        elif language == "sh":
            self.code += [(i, self.lines[i]) for i in range(begin, end)]
            if len(info) > 1:
                self.add_file(info[1], "".join(line + "\n" for line in self.lines[begin:end]))

    def read_console(self, begin, end, indent):
        self.code += [(i, self.lines[i]) for i in range(begin, end)]
        command = None
        for number in range(begin, end):
            line = self.lines[number][len(indent):]
            if line.startswith("$ "):
                command = Command(number, line[2:], indent)
                self.steps.append(command)
            elif command is None:
                return
            elif line.startswith("> ") and not command.expected:
                command.text += "\n" + line[2:]
                command.output_begin = number + 1
            else:
                command.expected.append(line)

    def add_file(self, name, text):
        self.steps.append(f"cat >{name} <<'END_OF_EXAMPLE'\n{text}END_OF_EXAMPLE\n")

    def read_descriptor(self, info, begin, end):
        text = "".join(line + "\n" for line in self.lines[begin:end])
        if info[:1] == ["statements"]:
            text = "device example\n{\n" + text + "}\n"
            info = info[1:]
        name = info[0] if info else "unnamed.sbd"
        self.add_file(name, text)
        self.steps.append(Command(begin, f"sbd check --format-only {name}", None))
        if not info:
            self.steps.append(f"rm {name}")

    def read_yaml(self, begin, end):
        self.code += [(i, self.lines[i]) for i in range(begin, end)]
        if yaml is None:
            return
        try:
            workflow = yaml.safe_load("\n".join(self.lines[begin:end]))
        except yaml.YAMLError as error:
            report(begin, f"not YAML: {error}")
            return
        for job in workflow["jobs"].values():
            for step in job["steps"]:
                if step.get("run", "").startswith("sbd "):
                    self.steps.append(f"( {step['run']} ) >/dev/null || echo failed: $?")

    def run(self, folder):
        """Of each command, its output."""
        script = ""
        for step in self.steps:
            text = step.text if isinstance(step, Command) else step
            script += f"{text}\nprintf '{MARK}'\n"
        environment = {**os.environ, "HOME": str(folder), "LC_ALL": "C.UTF-8", "TERM": "dumb",
                       "PATH": f"{tool.parent}:{os.environ['PATH']}", "GIT_PAGER": "cat",
                       "GIT_CONFIG_NOSYSTEM": "1", "NO_COLOR": ""}
        run = subprocess.run(["bash"], input=script, text=True, cwd=folder, env=environment,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=300,
                             check=False, errors="replace")
        outputs = run.stdout.split(MARK)
        if len(outputs) != len(self.steps) + 1:
            sys.exit(f"{document.name}: the examples end early:\n{run.stdout}")
        return outputs[:-1]


def matches(expected, actual):
    """Whether the lines are the same, "..." standing for any lines."""
    if "..." not in [line.strip() for line in expected]:
        return expected == actual
    pattern = ""
    for line in expected:
        pattern += r"(?:.*\n)*" if line.strip() == "..." else re.escape(line) + r"\n"
    return re.fullmatch(pattern, "".join(line + "\n" for line in actual)) is not None


def compare(doc, outputs):
    changes = []
    for step, output in zip(doc.steps, outputs):
        if not isinstance(step, Command):
            if output:
                sys.exit(f"{document.name}: {step}\nprinted:\n{output}")
            continue
        actual = [line.rstrip() for line in output.splitlines()]
        expected = list(step.expected)
        # An empty line in front of the next command is there for the eyes only.
        while expected and not expected[-1]:
            expected.pop()
        if matches(expected, actual):
            continue
        if is_update and step.indent is not None:
            changes.append((step, len(expected), actual))
            continue
        report(step.number, f"$ {step.text}\nsays the document:\n" + "\n".join(expected) +
               "\nis printed:\n" + "\n".join(actual) + "\n")
    for step, count, actual in reversed(changes):
        lines = [(step.indent + line).rstrip() for line in actual]
        doc.lines[step.output_begin:step.output_begin + count] = lines
    if changes:
        document.write_text("\n".join(doc.lines) + "\n")


def check_options(code):
    """Every option that the document shows is one of its command."""
    known = {}
    for number, line in code:
        for command, rest in re.findall(r"\bsbd ((?:block )?[a-z]+)\b([^|;&]*)", line):
            if command not in known:
                run = subprocess.run([tool, *command.split(), "--help"], capture_output=True,
                                     text=True, check=False)
                known[command] = run.stdout
            rest = re.sub(r"'[^']*'|\"[^\"]*\"", "", rest)
            for option in re.findall(r"(?<![\w-])(--?[a-z][\w-]*)", rest):
                name = re.escape(option if option.startswith("--") else option[:2])
                if known[command] and not re.search(rf"(?<![\w-]){name}(?![\w-])", known[command]):
                    report(number, f"sbd {command} has no {option}")


def check_every_option():
    """Each command has a section, and each of its options stands somewhere in the document."""
    text = document.read_text()
    help_text = subprocess.run([tool, "--help"], capture_output=True, text=True, check=True).stdout
    commands = re.findall(r"^  ([a-z]+) {10,}", help_text, re.MULTILINE)
    for command in commands:
        if f"\n## `sbd {command}`\n" not in text:
            report(0, f"there is nothing about sbd {command}")
        usage = subprocess.run([tool, command, "--help"], capture_output=True, text=True,
                               check=True).stdout
        for option in re.findall(r"^  (?:-\w,)?(--[\w-]+)", usage, re.MULTILINE):
            if not re.search(rf"(?<![\w-]){option}(?![\w-])", text):
                report(0, f"there is nothing about sbd {command} {option}")
    if len(commands) < 10:
        report(0, f"help names these commands only: {commands}")


source = document.read_text()
if "$ git " in source and shutil.which("git") is None:
    print("there is no git")
    sys.exit(77)
doc_file = Document(source.rstrip("\n").split("\n"))
with tempfile.TemporaryDirectory() as work:
    work_folder = pathlib.Path(work)
    (work_folder / "examples").symlink_to(examples)
    compare(doc_file, doc_file.run(work_folder))
check_options(doc_file.code)
if sys.argv[4:] == ["every-option"]:
    check_every_option()
commands = sum(isinstance(step, Command) for step in doc_file.steps)
print(f"{document.name}: {commands} examples")
for fault in faults:
    print(fault)
sys.exit(1 if faults else 0)
