#!/usr/bin/env python3
"""Types half of command lines into a shell, with tabs, and looks at what the completed ones do.

Arguments: the shell, the tool, and the folder with the completion scripts. Exit status 77 where
there is no such shell.
"""

import os
import pathlib
import pty
import re
import select
import shutil
import subprocess
import sys
import tempfile
import time

shell = sys.argv[1]
tool, scripts = (pathlib.Path(name).resolve() for name in sys.argv[2:4])
if shutil.which(shell) is None:
    print(f"there is no {shell}")
    sys.exit(77)

BOARD = """device board
{
    family = veldran_arm;
    type = qmxa10;
    bus main
    {
        width = 32;
        title = "two words";
    }
    region sram[0]
    {
        size = 64K;
    }
}
"""
# What is typed ("\t" is the tab), and what the completed line then prints.
CASES = [
    ("sbd --vers\t\n", r"^sbd \d+\.\d+"),
    ("sbd expl\tsdram.data_w\t\n", r"^sdram\.data_width\s+chips"),
    ("sbd li\tboa\t\n", r"^board\s+board\.main\s+board\.sram\[0\]\s"),
    ("sbd get odd\\ na\tbo\tma\twid\t\n", r"^32\s"),
    ("sbd get ~/in\tboa\tboard.main.wid\t\n", r"^32\s"),
    ("sbd get ./inner/board.sbd --as num\tboard.main.wid\t\n", r"^32\s"),
    ("sbd get board.sbd BOARD.MAIN.WID\t\n", r"^32\s"),
    ("sbd get --a\traw board.sbd board.sr\tsi\t\n", r"^64K\s"),
    ("sbd check --format=sar\tboard.sbd\n", r"sarif-schema-2\.1\.0"),
    ("sbd check --format gith\tfaulty.sbd\n", r"^::error file=faulty\.sbd"),
    ("sbd set -o - board.sbd board.main.title '\"tw\t | grep title\n", r'title = "two words";'),
    ("sbd explain TOOL_WINDOWS_O\t\n", r"^TOOL_WINDOWS_OVERLAP"),
    ("sbd new --chip qmxa1 --with sdram,uar\t| grep -c 'parameters [su]'\n", r"^\d\s"),
    ("sbd show missing.sbd bo\t| wc -l\n", r"missing\.sbd: error: [^\n]*missing\.sbd"),
    ("sbd show faulty.sbd bo\t| wc -l\n", r"faulty\.sbd:2:1: error: "),
]
PROMPT = "ready> "
SECONDS = 60


def make_folder(folder):
    (folder / "board.sbd").write_text(BOARD)
    (folder / "inner").mkdir()
    (folder / "inner" / "board.sbd").write_text(BOARD)
    (folder / "board.txt").write_text("not a descriptor\n")
    (folder / "odd name.sbd").write_text(BOARD)
    (folder / "faulty.sbd").write_text("device board {\n")


class BASH:
    command = ["bash", "--norc", "--noprofile", "-i"]
    setup = ["bind 'set bell-style none'", "bind 'set enable-bracketed-paste off'",
             "source {scripts}/sbd.bash", "PS1='{prompt}'"]


class ZSH:
    command = ["zsh", "-f", "-i"]
    setup = ["fpath=({scripts} $fpath)", "autoload -Uz compinit && compinit -u -D",
             "unset zle_bracketed_paste; unsetopt beep prompt_cr prompt_sp", "PS1='{prompt}'"]


class TERMINAL:
    """A shell that believes that somebody sits before it."""

    def __init__(self, kind, folder):
        pid, self.fd = pty.fork()
        if pid == 0:
            os.chdir(folder)
            os.execvp(kind.command[0], kind.command)
        self.pid = pid
        for line in kind.setup:
            self.write(line.format(scripts=scripts, prompt=PROMPT) + "\n")
        self.run("echo begin\n")

    def write(self, text):
        os.write(self.fd, text.encode())

    def read_until(self, end):
        text = ""
        deadline = time.monotonic() + SECONDS
        while not text.endswith(end):
            if not select.select([self.fd], [], [], max(0, deadline - time.monotonic()))[0]:
                sys.exit(f"{shell} says nothing more behind:\n{text}")
            text += os.read(self.fd, 65536).decode(errors="replace")
        return text

    def run(self, typed):
        """What is printed behind the line that was typed."""
        self.write(typed)
        self.write("echo e''nd\n")
        # The words of the line are echoed in pieces; the second line's never contain "end".
        text = self.read_until("\nend\r\n" + PROMPT)
        return re.sub(r"\x1b\[[0-9;?]*[A-Za-z]", "", text).replace("\r", "")


def check_on_terminal(kind, folder):
    terminal = TERMINAL(kind, folder)
    faults = []
    for typed, expected in CASES:
        text = terminal.run(typed)
        if re.search(expected, text, re.MULTILINE) is None:
            faults.append(f"typed: {typed!r}\nexpected: {expected}\non the terminal:\n{text}")
    return faults


# Fish tells its candidates.
FISH_CASES = [
    ("sbd expl", {"explain"}),
    ("sbd explain sdram.data_w", {"sdram.data_width"}),
    ("sbd list boa", {"board.sbd"}),
    ("sbd get odd\\ name.sbd board.main.wid", {"board.main.width"}),
    ("sbd get board.sbd BOARD.MAIN.WID", {"board.main.width"}),
    ("sbd get board.sbd board.sram[0].", {"board.sram[0].size"}),
    ("sbd get board.sbd board.ma", {"board.main."}),
    ("sbd check --format sar", {"sarif"}),
    ("sbd check --format=sar", {"--format=sarif"}),
    ("sbd explain TOOL_WINDOWS_O", {"TOOL_WINDOWS_OVERLAP"}),
    ("sbd new --with sdram,uar", {"sdram,uart"}),
    ("sbd show missing.sbd bo", set()),
    ("sbd show faulty.sbd bo", set()),
]


def check_fish(folder):
    faults = []
    for typed, expected in FISH_CASES:
        script = f"source {scripts}/sbd.fish; complete --do-complete '{typed}'".replace("\\", "\\\\")
        run = subprocess.run(["fish", "--no-config", "-c", script], cwd=folder, text=True,
                             capture_output=True, check=False, timeout=SECONDS)
        found = {line.split("\t")[0] for line in run.stdout.splitlines()}
        if found != expected or run.stderr:
            faults.append(f"typed: {typed}\nexpected: {expected}\nfound: {found}\n{run.stderr}")
    return faults


def check():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        os.environ.update(PATH=f"{tool.parent}:{os.environ['PATH']}", TERM="dumb", HOME=name,
                          LC_ALL="C.UTF-8", COLUMNS="200", HISTFILE="", XDG_CONFIG_HOME=name,
                          XDG_DATA_HOME=name)
        make_folder(folder)
        if shell == "fish":
            return check_fish(folder)
        return check_on_terminal({"bash": BASH, "zsh": ZSH}[shell], folder)


all_faults = check()
for fault in all_faults:
    print(fault)
sys.exit(1 if all_faults else 0)
