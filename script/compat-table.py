#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Usage: script/compat-table.py PAGE FOLDER...

Rewrites the table of a page from test reports. Each folder is named after a version and has its report.
"""

import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

BEGIN, END = "<!-- table -->\n", "<!-- end of table -->\n"
COLUMNS = ("Ports, URLs, texts", "Files, folders", "TCP", "Funnel", "Stop", "Reset", "After a restart", "Failures shown")
BY_MODULE = {"web_shares": 0, "files": 1, "tcp": 2, "restart": 6, "failures": 7}


def column(case):
    """The index of a test's column."""
    name = case.get("name")
    if "funnel" in name.lower():
        return 3
    if "reset" in name:
        return 5
    return BY_MODULE.get(case.get("classname").removeprefix("test_"), 4)


def outcome(cases):
    """The text of a cell: whether all tests passed, and whether this version behaves differently."""
    failed = [case for case in cases if case.find("failure") is not None or case.find("error") is not None]
    if failed:
        return f"{len(failed)} of {len(cases)} fail"
    return "differs" if any(differences(case) for case in cases) else "works"


def differences(case):
    return [found.get("value") for found in case.iterfind("properties/property") if found.get("name") == "differs"]


def row(folder):
    cases = [case for case in ElementTree.parse(folder / "report.xml").iter("testcase") if case.find("skipped") is None]
    cells = [outcome([case for case in cases if column(case) == index]) for index in range(len(COLUMNS))]
    found = dict.fromkeys(text for case in cases for text in differences(case))
    return [folder.name, *cells, "; ".join(found) or "–"]


def main(page, folders):
    head = ["Version", *COLUMNS, "What differs"]
    lines = [head, ["---"] * len(head), *(row(Path(folder)) for folder in folders)]
    table = "".join("| " + " | ".join(cells) + " |\n" for cells in lines)
    before, rest = page.read_text().split(BEGIN)
    after = rest.split(END)[1]
    page.write_text(before + BEGIN + table + END + after)


if len(sys.argv) < 3:
    sys.exit(__doc__)
main(Path(sys.argv[1]), sys.argv[2:])
