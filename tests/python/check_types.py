"""What a type checker sees of the module: it accepts a program that is right, and no other.

check_types.py STAGED EXAMPLE - the folder with the module, and a program that uses it.
"""

import importlib.util
import os
import pathlib
import subprocess
import sys
import tempfile

if importlib.util.find_spec("mypy") is None:
    print("mypy is not installed")
    sys.exit(77)

staged, example = sys.argv[1:]

# A program with its own type errors, one in each line that is marked.
WRONG = """\
import sbd
document = sbd.read("board.sbd")
for parameter in document.parameters():
    parameter.targets  # wrong
    parameter.position.line  # wrong: it may have none
    parameter.name + 1  # wrong
for block in document.blocks():
    block.value  # wrong
device = sbd.Device("board.sbd", 1)  # wrong
device.clocks.ahb1 + 1.0  # wrong: there may be none
document.save(canonical="yes")  # wrong
with document.edit() as same:
    same.rename("a")  # wrong
sbd.Position(1, 2)  # wrong
"""


def mypy(folder, *arguments):
    environment = dict(os.environ, MYPYPATH=staged)
    return subprocess.run([sys.executable, "-m", *arguments], cwd=folder, env=environment,
                          capture_output=True, text=True)


def expect_good(what, run):
    if run.returncode != 0:
        sys.exit(f"{what}:\n{run.stdout}{run.stderr}")


with tempfile.TemporaryDirectory() as folder:
    strict = ("mypy", "--strict", "--python-version", "3.9")
    expect_good("the module", mypy(folder, *strict, "-p", "sbd"))
    expect_good("the program", mypy(folder, *strict, example))
    expect_good("the stub of the compiled part", mypy(folder, "mypy.stubtest", "sbd._items"))
    pathlib.Path(folder, "wrong.py").write_text(WRONG)
    found = mypy(folder, *strict, "wrong.py").stdout
    lines = {int(line.split(":")[1]) for line in found.splitlines() if ": error:" in line}
    expected = {number for number, line in enumerate(WRONG.splitlines(), 1) if "# wrong" in line}
    if lines != expected:
        sys.exit(f"errors in the lines {sorted(lines)} instead of {sorted(expected)}:\n{found}")
