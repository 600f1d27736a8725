"""Runs the program of the guide on files with and without faults.

check_example.py EXAMPLES
"""

import pathlib
import subprocess
import sys

examples = pathlib.Path(sys.argv[1])


def run(name):
    return subprocess.run([sys.executable, examples / "programs" / "clock_table.py",
                           examples / name], capture_output=True, text=True)


def expect(condition, what, found):
    if not condition:
        sys.exit(f"{what}:\n{found.stdout}{found.stderr}")


good = run("qmxa10_full.sbd")
expect(good.returncode == 0 and not good.stderr, "a good file", good)
expect(good.stdout.startswith("board: qmxa10\n  AHB1 200 MHz, AHB2 100 MHz, SDRAM 125 MHz\n  line "),
       "its clocks", good)
several = run("multi_device.sbd")
expect(several.returncode == 0 and "\ndisplay_board: qmxm4\n  AHB1 -," in several.stdout,
       "several devices", several)
faulty = run("faulty_syntax.sbd")
expect(faulty.returncode == 1 and not faulty.stdout
       and faulty.stderr.count(": error: ") == 26, "a faulty file", faulty)
