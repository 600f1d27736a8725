#!/usr/bin/env python3
"""Opens a report in headless Chromium and fails when its script did not run or anything was
complained about. Exit code 77, which stands for skipped, where Chromium is not installed.
Arguments: the tool, and a descriptor."""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77
FLAGS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
         "--disable-background-networking", "--disable-component-update", "--disable-sync",
         "--enable-logging=stderr", "--dump-dom"]

# Types into the search field as a user would. The page as it is forbids any other script.
SEARCH = """
const field = document.querySelector("input");
field.value = "PLL sdram";
field.dispatchEvent(new Event("input"));
"""


def open_page(browser, folder, page):
    path = pathlib.Path(folder) / "page.html"
    path.write_text(page, encoding="utf-8")
    with tempfile.TemporaryDirectory() as profile:
        run = subprocess.run([browser, *FLAGS, f"--user-data-dir={profile}", path.as_uri()],
                             capture_output=True, text=True, timeout=120, check=False)
    complaints = [line for line in run.stderr.splitlines() if "CONSOLE" in line]
    return run.stdout, complaints


def main():
    browser = shutil.which("chromium")
    if browser is None:
        print("skipped: chromium is not installed")
        return SKIPPED
    tool, descriptor = sys.argv[1:]
    page = subprocess.run([tool, "report", descriptor], capture_output=True, text=True,
                          check=True).stdout
    faults = []
    with tempfile.TemporaryDirectory() as folder:
        dom, complaints = open_page(browser, folder, page)
        faults += complaints
        if '<p class="search">' not in dom:
            faults.append("the search field does not show")
        if re.search(r"<tr[^>]* hidden", dom):
            faults.append("rows are hidden before anything is searched")

        searched = re.sub(r'<meta http-equiv="Content-Security-Policy"[^>]*>', "", page)
        searched = searched.replace("</body>", f"<script>{SEARCH}</script></body>")
        dom, complaints = open_page(browser, folder, searched)
        faults += complaints
        shown = re.findall(r'<tr(?: class="\w+")?><td>([\w.\[\]]+)</td><td>[^<]*</td><td>file', dom)
        expected = [f"clocks.pll_sdram_{end}" for end in ("bypass", "m", "n", "k")]
        if shown != expected:
            faults.append(f"the search shows {shown}")
    print("\n".join(faults) or "fine")
    return 1 if faults else 0


sys.exit(main())
