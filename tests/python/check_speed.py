"""Reading 100000 parameters may take Python no more than five times what it takes C++.

check_speed.py READ_TIME - the program that measures C++. What is measured is processor time.
"""

import subprocess
import sys
import tempfile
import time

import sbd

MOST = 5
BLOCKS, PARAMETERS = 1000, 100
VALUES = ("0x{0:x}", "{0}MHz", "true", '"text {0}"', "{0}")


def make_text():
    parts = ["device board {\n"]
    for block in range(BLOCKS):
        parts.append(f"    module m{block} {{\n")
        parts.extend(f"        parameter_{i} = {VALUES[i % len(VALUES)].format(i)};\n"
                     for i in range(PARAMETERS))
        parts.append("    }\n")
    parts.append("}\n")
    return "".join(parts)


def best_time(action):
    best = float("inf")
    for _ in range(7):
        begin = time.process_time()
        kept = action()
        del kept
        best = min(best, (time.process_time() - begin) * 1000)
    return best


def go_through(document):
    return sum(1 for parameter in document.parameters() if parameter.value is not None)


with tempfile.NamedTemporaryFile("w", suffix=".sbd") as file:
    file.write(make_text())
    file.flush()
    run = subprocess.run([sys.argv[1], file.name], check=True, capture_output=True, text=True)
    cpp = float(run.stdout)
    reading = best_time(lambda: sbd.read(file.name))
    document = sbd.read(file.name)
    if go_through(document) != BLOCKS * PARAMETERS:
        sys.exit("not all parameters are there")
    iterating = best_time(lambda: go_through(document))

print(f"C++ reads in {cpp:.1f} ms, Python in {reading:.1f} ms ({reading / cpp:.2f} times), and goes "
      f"through all values in {iterating:.1f} ms ({iterating / cpp:.2f} times)")
sys.exit(0 if reading <= MOST * cpp else "too slow")
