#!/usr/bin/env python3
"""Changes one constant or comparison after the other, and looks whether a test notices.

For each change the file is compiled again, the library is linked anew in a folder of its own, and
the test programs of a finished build are run with that library until one of them fails. What was
tried is kept in BUILD/mutation/results.jsonl, so that a later run goes on from there. Changes that
no test can notice are listed with their reasons in equivalent.txt beside this script; they are not
tried unless that is asked for.

Usage: mutate.py BUILD_FOLDER [option...] [FILE...]
"""

import argparse
import json
import random
import resource
import sys
import time
from collections import Counter
from concurrent.futures import ThreadPoolExecutor, as_completed
from pathlib import Path
from queue import SimpleQueue

from changed_library import CHANGED_LIBRARY, COMPILER
from changes import FILES, changes_of
from noticing import TESTS

MOST_MEMORY = 4 << 30  # Of a test; a change may lead to an endless list.


def known_equivalents(files):
    """Those of some files, or all of them."""
    lines = Path(__file__).with_name("equivalent.txt").read_text().splitlines()
    names = [line for line in lines if line and not line.startswith("#")]
    return [name for name in names if not files or name.split(" | ")[0] in files]


def read_results(path):
    if not path.exists():
        return {}
    return {r["name"]: r for r in map(json.loads, path.read_text().splitlines())}


def report(results, names, equivalents):
    """True when every change that was tried is as it should be."""
    count = {}
    wrong = [f"in equivalent.txt, but no such change: {n}" for n in equivalents if n not in names]
    for name in names:
        state = results.get(name, {}).get("state")
        if name in equivalents:
            if state == "killed":
                wrong.append(f"in equivalent.txt, but noticed by {results[name]['by']}: {name}")
            state = "equivalent"
        elif state == "survived":
            wrong.append(f"survived: {name}")
        if state:
            count.setdefault(name.split(" | ")[0], Counter())[state] += 1
    total = sum(count.values(), Counter())
    print(f"{'file':48} {'killed':>7} {'equal':>6} {'not C++':>8} {'survived':>9}")
    for file, c in sorted(count.items()) + [("all", total)]:
        print(f"{file:48} {c['killed']:7} {c['equivalent']:6} {c['invalid']:8} {c['survived']:9}")
    counted = total["killed"] + total["survived"]
    if counted:
        print(f"score {100 * total['killed'] / counted:.1f} %, of {counted} changes; "
              f"{len(names)} are possible")
    for line in wrong:
        print(line)
    return not wrong


def try_change(change, libraries, tests):
    library = libraries.get()
    begin = time.monotonic()
    result = {"name": change.name, "state": "invalid"}
    noticing = tests.noticing_at_once(change, library)
    if noticing or library.make(change.file, change.source()):
        noticing = noticing or tests.noticing(change, library)
        result.update(state="killed" if noticing else "survived", by=noticing)
    result["seconds"] = round(time.monotonic() - begin, 2)
    libraries.put(library)
    return result


def try_all(changes, jobs, compiler, results_file):
    """Tries the changes and yields the result of each."""
    folder = results_file.parent
    compiler.prepare_headers()
    libraries = SimpleQueue()
    for number in range(jobs):
        libraries.put(CHANGED_LIBRARY(compiler, folder / str(number)))
    unchanged = CHANGED_LIBRARY(compiler, folder / "unchanged")
    if not unchanged.make_unchanged({change.file for change in changes}):
        sys.exit("the library does not compile as it is")
    tests = TESTS(compiler.build)
    tests.measure(unchanged)
    pool = ThreadPoolExecutor(jobs)
    try:
        started = [pool.submit(try_change, change, libraries, tests) for change in changes]
        for result in as_completed(started):
            with results_file.open("a") as file:
                file.write(json.dumps(result.result()) + "\n")
            yield result.result()
    finally:
        pool.shutdown(cancel_futures=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=Path)
    parser.add_argument("--most", type=int, help="stop after so many changes")
    parser.add_argument("--again", action="store_true", help="try the survivors again")
    parser.add_argument("--equivalent", action="store_true",
                        help="try those that no test is said to notice, too")
    parser.add_argument("--jobs", type=int, default=1, help="try so many changes at a time")
    parser.add_argument("--report", action="store_true", help="only tell what is known")
    parser.add_argument("files", nargs="*", metavar="FILE")
    options = parser.parse_intermixed_args()
    resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

    changes = [change for file in options.files or FILES for change in changes_of(file)]
    equivalents = known_equivalents(options.files)
    results_file = options.build.resolve() / "mutation" / "results.jsonl"
    results = read_results(results_file)

    done = {name for name, result in results.items()
            if not (options.again and result["state"] == "survived")}
    if not options.equivalent:
        done |= set(equivalents)
    waiting = [change for change in changes if change.name not in done]
    # In an order of its own, so that a run that is cut short is a fair sample.
    random.Random(1).shuffle(waiting)
    if waiting and not options.report:
        compiler = COMPILER(options.build.resolve())
        for result in try_all(waiting[: options.most], options.jobs, compiler, results_file):
            results[result["name"]] = result
            if result["state"] == "survived" and result["name"] not in equivalents:
                print("survived:", result["name"], flush=True)
    return 0 if report(results, [change.name for change in changes], equivalents) else 1


if __name__ == "__main__":
    sys.exit(main())
