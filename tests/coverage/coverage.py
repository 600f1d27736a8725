"""Which lines and branches of the library and the standalone host the tests leave out.

usage: coverage.py BUILD SOURCE

Runs the programs that BUILD/coverage_programs.txt names, prints every gap that is not in
exclusions.txt and every exclusion that is no gap, and fails if there is any.
"""

import collections
import concurrent.futures
import json
import os
import pathlib
import shutil
import subprocess
import sys

WATCHED = ("sbd/", "host/")
CODE_REGION = 0
PROGRAM_TIMEOUT = 1200


def run_program(program, profiles):
    """Runs one test program; what it printed if it failed."""
    environment = dict(os.environ, LLVM_PROFILE_FILE=f"{profiles}/{program.name}-%m.profraw")
    result = subprocess.run([program, "--gtest_brief=1"], env=environment, cwd=profiles,
                            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, timeout=PROGRAM_TIMEOUT, check=False)
    return None if result.returncode == 0 else result.stdout.decode(errors="replace")


def run_programs(programs, profiles):
    shutil.rmtree(profiles, ignore_errors=True)
    profiles.mkdir(parents=True)
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        outputs = pool.map(lambda program: run_program(program, profiles), programs)
        for program, output in zip(programs, outputs):
            if output is not None:
                print(f"{program.name} failed:\n{output}")
                failed += 1
    return failed


def export(objects, profiles):
    """What llvm-cov says about all objects together."""
    merged = profiles / "all.profdata"
    subprocess.run(["llvm-profdata", "merge", "-sparse", "-o", merged,
                    *profiles.glob("*.profraw")], check=True)
    arguments = ["llvm-cov", "export", f"-instr-profile={merged}", objects[0]]
    for other in objects[1:]:
        arguments += ["-object", other]
    # It warns of functions that one object has under the name of another's.
    result = subprocess.run(arguments, check=True, stdout=subprocess.PIPE,
                            stderr=subprocess.DEVNULL)
    return json.loads(result.stdout)["data"][0]


def relative(name, source):
    return os.path.relpath(os.path.normpath(name), source)


def find_gaps(data, source):
    """Gaps as (file, line, what), and how many branches there are.

    What a template is instantiated for counts together. A branch that is never reached at all is
    left to the code around it.
    """
    regions = collections.Counter()
    branches = collections.defaultdict(lambda: [0, 0])
    for function in data["functions"]:
        files = [relative(name, source) for name in function["filenames"]]
        for region in function["regions"]:
            file = files[region[5]]
            if region[7] == CODE_REGION and file.startswith(WATCHED):
                regions[(file, *region[:4])] += region[4]
        for branch in function["branches"]:
            file = files[branch[6]]
            if file.startswith(WATCHED):
                sides = branches[(file, *branch[:4])]
                sides[0] += branch[4]
                sides[1] += branch[5]

    gaps = set()
    missed_branches = 0
    for (file, line, *_), (true_count, false_count) in branches.items():
        missed_branches += (true_count == 0) + (false_count == 0)
        if (true_count == 0) != (false_count == 0):
            gaps.add((file, line, "never true" if true_count == 0 else "never false"))
    explained = {(file, line) for file, line, _ in gaps}
    for (file, line, *_), count in regions.items():
        if count == 0 and (file, line) not in explained:
            gaps.add((file, line, "never run"))
    return sorted(gaps), 2 * len(branches), missed_branches


def count_lines(data, source):
    lines = [file["summary"]["lines"] for file in data["files"]
             if relative(file["filename"], source).startswith(WATCHED)]
    return sum(one["count"] for one in lines), sum(one["covered"] for one in lines)


def read_exclusions(path):
    """The indented lines of the list, as (file, what, code): whether it is a gap in every run."""
    exclusions = {}
    for line in path.read_text().splitlines():
        if line.startswith("  "):
            entry = line.strip()
            is_sure = not entry.startswith("? ")
            exclusions[tuple(entry.removeprefix("? ").split(": ", 2))] = is_sure
    return exclusions


def report(gaps, exclusions, source):
    """Prints what the list and the gaps do not agree on; how much that is."""
    texts = {}
    found = set()
    faults = 0
    for file, line, what in gaps:
        if file not in texts:
            texts[file] = (source / file).read_text().splitlines()
        code = texts[file][line - 1].strip()
        found.add((file, what, code))
        if (file, what, code) not in exclusions:
            print(f"{file}:{line}: {what}: {code}")
            faults += 1
    for exclusion, is_sure in exclusions.items():
        if is_sure and exclusion not in found:
            print("exclusions.txt lists what is no gap: " + ": ".join(exclusion))
            faults += 1
    return faults


def main():
    build, source = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    programs = [pathlib.Path(line)
                for line in (build / "coverage_programs.txt").read_text().splitlines()]
    profiles = build / "profiles"
    failed = run_programs(programs, profiles)
    libraries = [build / "lib" / "libsbd.so", build / "lib" / "libsbd_host.so"]
    data = export(libraries + programs, profiles)
    gaps, branches, missed_branches = find_gaps(data, source)
    exclusions = read_exclusions(pathlib.Path(__file__).with_name("exclusions.txt"))
    faults = report(gaps, exclusions, source)
    lines, covered_lines = count_lines(data, source)
    print(f"lines: {covered_lines} of {lines} ({100 * covered_lines / lines:.2f} %)")
    print(f"branches: {branches - missed_branches} of {branches}"
          f" ({100 * (branches - missed_branches) / branches:.2f} %)")
    print(f"gaps: {len(gaps)}, of which {len(exclusions)} are listed with the reason")
    return 1 if failed or faults else 0


if __name__ == "__main__":
    sys.exit(main())
