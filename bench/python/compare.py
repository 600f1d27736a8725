"""Sets what Python takes for a document beside what C++ takes to read it, and prints the ratios.

compare.py READ_TIME [PARAMETERS] - the program that measures C++. What is measured is processor
time. C++ and Python take turns: each gives the best of some rounds, and the ratio that is printed is
the median of those of all turns.
"""

import platform
import statistics
import subprocess
import sys
import tempfile
import time

import sbd

TURNS, ROUNDS = 7, 9
TARGET = 5


def read(path):
    return sbd.read(path)


def read_values(path):
    for parameter in sbd.read(path).parameters():
        parameter.name, parameter.value


def read_parameters(path):
    for parameter in sbd.read(path).parameters():
        parameter.name, parameter.value, parameter.position.line


def read_everything(path):
    for item in sbd.read(path):
        item.name, item.position.line
        if not isinstance(item, sbd.Block):
            item.value


FIGURES = (("read", read),
           ("read, then name and value of each parameter", read_values),
           ("read, then name, value and line of each parameter", read_parameters),
           ("the same for all blocks and statements in one pass", read_everything))


def best_time(action, path):
    best = float("inf")
    for _ in range(ROUNDS):
        begin = time.process_time()
        kept = action(path)
        del kept  # C++ frees its document as well.
        best = min(best, (time.process_time() - begin) * 1000)
    return best


def main():
    program, count = sys.argv[1], sys.argv[2] if len(sys.argv) > 2 else "100000"
    ratios = {what: [] for what, _ in FIGURES}
    cpp_times = []
    with tempfile.NamedTemporaryFile(suffix=".sbd") as file:
        for _ in range(TURNS):
            run = subprocess.run([program, count, file.name], check=True, capture_output=True,
                                 text=True)
            cpp_times.append(float(run.stdout))
            for what, action in FIGURES:
                ratios[what].append(best_time(action, file.name) / cpp_times[-1])
    print(f"C++ reads {count} parameters in {statistics.median(cpp_times):.1f} ms\n")
    print("| Python, as a multiple of that | measured | target |  |\n|---|---:|---|---|")
    for what, found in ratios.items():
        ratio = statistics.median(found)
        print(f"| {what} | {ratio:.2f} | <= {TARGET} | {'pass' if ratio <= TARGET else 'miss'} |")
    print(f"\nPython {platform.python_version()}")


if __name__ == "__main__":
    main()
