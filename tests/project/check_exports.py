#!/usr/bin/env python3
"""Fails when the shared library exports anything beyond its interface."""

import re
import subprocess
import sys

INTERFACE = re.compile(
    r"^(typeinfo (name )?for |vtable for )?"
    r"(SBD_FILE_PARSER\b|sbd_yyFlexLexer\b|FlexLexer\b|MSG_SBD::|sbd_(yyparse|yyerror|do_|join_|"
    r"create_symbol|copy_token|copy_text|free_text|version)\w*\()")

lines = subprocess.run(["nm", "-DC", "--defined-only", sys.argv[1]], check=True,
                       capture_output=True, text=True).stdout.splitlines()
names = [line.split(" ", 2)[2] for line in lines]
strangers = [name for name in names if not INTERFACE.match(name)]
if not names:
    strangers = ["no symbol found"]
sys.exit("\n".join(strangers) if strangers else 0)
