#!/usr/bin/env python3
"""Fails when a formatter of manual pages has to say something about ours.

Arguments: the folders with the pages. Exit status 77 where no formatter is installed.
"""

import os
import pathlib
import shutil
import subprocess
import sys

FORMATTERS = [
    ["mandoc", "-T", "lint", "-W", "warning"],
    ["groff", "-man", "-Tutf8", "-ww", "-z", "-Kutf8"],
    ["man", "--warnings", "-l", "-E", "UTF-8", "-Tutf8", "-Z"],
]

pages = sorted(page for folder in sys.argv[1:] for page in pathlib.Path(folder).glob("*.[1-8]"))
if not pages:
    sys.exit("there are no pages")
formatters = [command for command in FORMATTERS if shutil.which(command[0]) is not None]
if not formatters:
    print("there is no formatter")
    sys.exit(77)

faults = 0
for command in formatters:
    for page in pages:
        run = subprocess.run([*command, str(page)], text=True, capture_output=True, check=False,
                             env={**os.environ, "LC_ALL": "C.UTF-8", "MAN_KEEP_STDERR": "1"})
        # What man prints is the page; what the others print is what they have to say.
        remarks = run.stderr + (run.stdout if command[0] != "man" else "")
        if run.returncode != 0 or remarks:
            print(f"{' '.join(command)} {page}: exit status {run.returncode}\n{remarks}")
            faults += 1
sys.exit(1 if faults else 0)
