"""Runs the tests with a changed library until one of them fails.

A test that noticed a change nearby is the likeliest to notice the next. Then come the quick cases
of all programs, then the slow ones.
"""

import os
import re
import subprocess
import sys
import time
from collections import defaultdict
from typing import NamedTuple

PROGRAMS = [
    "message_catalogue_test",
    "parameter_reader_test",
    "class_layout_test",
    "device_object_test",
    "clocks_test",
    "rules_query_test",
    "examples_test",
    "random_settings_test",
    "table_driven_test",
    "device_exhaustion_test",
    "exhaustion_test",
    "misuse_test",
]
# Headers of constants that many files use: some cases see all that is in them through one file.
# When these notice a change, the other files need not be compiled.
VIEWS = {
    "sbd/device/sbd_veldran_keyword_texts.h":
        ("sbd/device/sbd_veldran_keywords.cpp", "rules_query_test", "KEYWORD_CONSTANTS.*"),
    "sbd/diagnostics/sbd_messages.h":
        ("sbd/diagnostics/msg_sbd.cpp", "message_catalogue_test", "*"),
}
MOST_NEIGHBOURS = 4
QUICK_CASE = 20  # Milliseconds.
CASE_TIME = re.compile(r"^\[ +OK \] ([\w/.]+).*\((\d+) ms\)$", re.M)
FAILED_CASE = re.compile(r"^\[ +FAILED +\] ([\w/.]+)", re.M)


class STAGE(NamedTuple):
    program: str
    cases: str  # A filter of GoogleTest.
    seconds: float  # It takes with the library as it is.


class TESTS:
    def __init__(self, build):
        self.folder = build / "bin"
        self.neighbours = defaultdict(list)  # For each file: where a change was, who noticed it.
        self.stages = []

    def measure(self, library):
        """Learns how long the tests take, which have to succeed, with this library."""
        for program in PROGRAMS:
            output = self._run(STAGE(program, "*", 600), library, "--gtest_brief=0").stdout.decode()
            slow = [case for case, time in CASE_TIME.findall(output) if int(time) > QUICK_CASE]
            filters = ["-" + ":".join(slow), ":".join(slow)] if slow else ["*"]
            for cases in filters:
                begin = time.monotonic()
                stage = STAGE(program, cases, 600)
                if self._failing(stage, library):
                    sys.exit(f"{program} fails without any change")
                self.stages.append(stage._replace(seconds=time.monotonic() - begin))
        self.stages.sort(key=lambda stage: stage.seconds)

    def noticing_at_once(self, change, library):
        """The same as `noticing`, of what one file shows; the library is made here."""
        if change.file not in VIEWS:
            return None
        user, program, cases = VIEWS[change.file]
        if not library.make(change.file, change.source(), [user]):
            return None
        failing = self._failing(STAGE(program, cases, 1), library)
        return f"{failing.program} {failing.cases}" if failing else None

    def noticing(self, change, library):
        """What notices the change, as a program and its cases; null if nothing does."""
        earlier = self.neighbours[change.file]
        nearest = sorted(earlier, key=lambda place: abs(place[0] - change.at))
        likely = list(dict.fromkeys(stage for _, stage in nearest))[:MOST_NEIGHBOURS]
        for stage in likely + self.stages:
            failing = self._failing(stage, library)
            if failing:
                earlier.append((change.at, failing))
                return f"{failing.program} {failing.cases}"
        return None

    def _failing(self, stage, library):
        """The case that fails, as a stage of its own; null if all succeed."""
        try:
            done = self._run(stage, library, "--gtest_brief=1")
        except subprocess.TimeoutExpired:
            return stage
        if done.returncode == 0:
            return None
        case = FAILED_CASE.search(done.stdout.decode(errors="replace"))
        return stage._replace(cases=case.group(1)) if case else stage

    def _run(self, stage, library, output):
        environment = dict(os.environ, LD_LIBRARY_PATH=str(library.folder / "lib"))
        command = [self.folder / stage.program, "--gtest_fail_fast", output]
        command.append("--gtest_filter=" + stage.cases)
        return subprocess.run(command, env=environment, capture_output=True, cwd=library.folder,
                              timeout=5 * stage.seconds + 2)
