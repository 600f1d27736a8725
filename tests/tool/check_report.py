#!/usr/bin/env python3
"""Fails when the pages of `sbd report` are not well-formed, load something, or let text of a
descriptor become markup. Arguments: the tool, and the folder of the examples."""

import base64
import hashlib
import html.parser
import pathlib
import re
import subprocess
import sys
import tempfile

VOID = {"meta", "input", "link", "img", "br", "hr"}
LOADING = {"src", "href", "xlink:href", "srcset", "action", "data", "background", "poster"}
ALLOWED = {"html", "head", "body", "meta", "title", "style", "script", "header", "main", "footer",
           "section", "article", "h1", "h2", "p", "b", "pre", "table", "thead", "tbody", "tr", "th",
           "td", "label", "input", "svg", "rect", "path", "text"}

HOSTILE = r'''device board {
  family = veldran_arm; type = qmxa10;
  note = "</td><script>alert(1)</script>";
  module stripe {
    type = veldran_stripe;
    endian = "<img src=x onerror='alert(2)'>&amp;\"";
    parameters clocks { input_clock_frequency = "</pre><b>&"; }
    region sram[0] { address_base = "-->]]>"; address_size = 4K; }
  }
}
'''


class Page(html.parser.HTMLParser):
    def __init__(self, name, text):
        super().__init__(convert_charrefs=True)
        self.name = name
        self.open = []
        self.tags = []
        self.texts = []
        self.scripts = []
        self.policy = ""
        self.faults = []
        self.feed(text)
        self.close()
        if self.open:
            self.fault(f"left open: {self.open}")

    def fault(self, text):
        self.faults.append(f"{self.name}:{self.getpos()[0]}: {text}")

    def handle_starttag(self, tag, attributes):
        self.tags.append(tag)
        if tag not in ALLOWED:
            self.fault(f"strange element <{tag}>")
        if tag not in VOID:
            self.open.append(tag)
        for key, value in attributes:
            if key in LOADING or key.startswith("on"):
                self.fault(f"attribute {key}={value}")
        if ("http-equiv", "Content-Security-Policy") in attributes:
            self.policy = dict(attributes)["content"]

    def handle_startendtag(self, tag, attributes):
        self.handle_starttag(tag, attributes)
        self.handle_endtag(tag)

    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            self.fault(f"</{tag}> closes nothing")

    def handle_data(self, data):
        if self.open and self.open[-1] == "script":
            self.scripts.append(data)
        elif self.open and self.open[-1] == "style":
            if "url(" in data or "@import" in data:
                self.fault("a style that loads something")
        else:
            self.texts.append(data)

    def handle_comment(self, data):
        self.fault("a comment")


def check(tool, path, expected_exit):
    run = subprocess.run([tool, "report", path], capture_output=True, text=True, check=False)
    page = Page(path.name, run.stdout)
    faults = page.faults
    if run.returncode != expected_exit:
        faults.append(f"{path.name}: exit code {run.returncode}")
    if not run.stdout.startswith("<!DOCTYPE html>") or not run.stdout.endswith("</html>\n"):
        faults.append(f"{path.name}: no page")
    if len(page.scripts) != 1:
        faults.append(f"{path.name}: {len(page.scripts)} scripts")
    digest = base64.b64encode(hashlib.sha256("".join(page.scripts).encode()).digest()).decode()
    if f"'sha256-{digest}'" not in page.policy or "default-src 'none'" not in page.policy:
        faults.append(f"{path.name}: the policy does not fit the script: sha256-{digest}")
    return page, faults


def main():
    tool, examples = sys.argv[1], pathlib.Path(sys.argv[2])
    faults = []
    for path in sorted(examples.glob("*.sbd")):
        checked = subprocess.run([tool, "check", path], capture_output=True, text=True, check=False)
        page, found = check(tool, path, checked.returncode)
        faults += found
        text = "".join(page.texts)
        count = len(re.findall(r": (?:error|warning|info): ", checked.stdout))
        if page.tags.count("article") != count:
            faults.append(f"{path.name}: {page.tags.count('article')} findings, not {count}")
        if path.name == "qmxa10_full.sbd":
            for expected in ("sdram.region[0]", "0x7FFFC000", "200 MHz", "clocks.pll_ahb_m"):
                if expected not in text:
                    faults.append(f"{path.name}: nothing of {expected}")
            if page.tags.count("svg") != 2:
                faults.append(f"{path.name}: no two pictures")
    with tempfile.TemporaryDirectory() as folder:
        hostile = pathlib.Path(folder) / "<b>&'.sbd"
        hostile.write_text(HOSTILE.replace('\\"', ""), encoding="utf-8")
        page, found = check(tool, hostile, 1)
        faults += found
        for expected in ("<img src=x onerror='alert(2)'>&amp;", "</pre><b>&", "-->]]>"):
            if expected not in "".join(page.texts):
                faults.append(f"hostile: {expected} is lost")
    print("\n".join(faults) or "all pages are fine")
    return 1 if faults else 0


sys.exit(main())
