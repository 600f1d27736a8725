#!/usr/bin/env python3
"""Fails when sbd_grammar_tables.h is not what make_grammar_tables.py makes."""

import pathlib
import subprocess
import sys

folder = pathlib.Path(sys.argv[1])
made = subprocess.run([sys.executable, folder / "make_grammar_tables.py"], check=True,
                      capture_output=True, text=True).stdout
if made != (folder / "sbd_grammar_tables.h").read_text():
    sys.exit("sbd_grammar_tables.h is out of date: run make_grammar_tables.py")
