#!/usr/bin/env python3
"""Fails when a public header does not compile alone, without a warning.

check_headers.py ROOT COMPILER... - in C++17 and C++20, with each compiler that is there; headers of
the C interface in C11 and C++17.
"""

import concurrent.futures
import os
import pathlib
import shutil
import subprocess
import sys

OPTIONS = ["-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Werror"]
LANGUAGES = {
    ".h": (("c++", "c++17"), ("c++", "c++20")),
    "_c.h": (("c", "c11"), ("c++", "c++17")),
}


def public_headers(root):
    for folder in ("h", "host", "sbd", "capi"):
        for header in sorted((root / folder).glob("*.h")):
            if folder in ("h", "sbd") or header.name.startswith("sbd_"):
                yield header


def check(root, compiler, language, standard, header):
    include = f'#include "{header.relative_to(root)}"\n'
    command = [compiler, "-x", language, f"-std={standard}", f"-I{root}", *OPTIONS, "-"]
    run = subprocess.run(command, input=include, capture_output=True, text=True)
    return None if run.returncode == 0 else f"{' '.join(command)} < {include}{run.stderr}"


root = pathlib.Path(sys.argv[1])
compilers = [compiler for compiler in sys.argv[2:] if shutil.which(compiler)]
with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
    checks = [pool.submit(check, root, compiler, language, standard, header)
              for header in public_headers(root)
              for language, standard in LANGUAGES["_c.h" if header.name.endswith("_c.h") else ".h"]
              for compiler in compilers]
if not checks:
    sys.exit("no header or no compiler found")
faults = [fault.result() for fault in checks if fault.result()]
sys.exit("\n".join(faults) if faults else 0)
