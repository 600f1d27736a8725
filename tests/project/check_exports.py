#!/usr/bin/env python3
"""Fails when the shared library exports anything beyond its interface."""

import re
import subprocess
import sys

INTERFACE = re.compile(
    r"^(typeinfo (name )?for |vtable for |bool )?"
    r"(SBD_FILE_PARSER\b|SBD_SOURCE_DOCUMENT\b|SBD_(QMXA\w*_)?PARAMETER_READER\b|SBD_VELDRAN\b|"
    r"SBD_VELDRAN_PARAMETER_READER\b|SBD_(VEL|PARAMETERS)_\w+$|SBD_DEVICE$|SBD_MODULE$|"
    r"sbd_yyFlexLexer\b|FlexLexer\b|MSG_SBD::|sbd_(yyparse|yyerror|do_|join_|create_symbol|"
    r"copy_token|copy_text|free_text|version|save_document|get_|take_parameter_memory|"
    r"give_parameter_memory)\w*\()")

lines = subprocess.run(["nm", "-DC", "--defined-only", sys.argv[1]], check=True,
                       capture_output=True, text=True).stdout.splitlines()
names = [line.split(" ", 2)[2] for line in lines]
# Templates of the standard library bring weak symbols along that no option hides.
strangers = [name for name in names if not INTERFACE.match(name) and "std::__detail" not in name]
if not names:
    strangers = ["no symbol found"]
sys.exit("\n".join(strangers) if strangers else 0)
