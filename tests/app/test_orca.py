# SPDX-License-Identifier: MIT
"""What the screen reader Orca says while a person goes through the window with the keyboard.

docs/accessibility.md holds the steps and the wanted lines.
"""

import codecs
import os
import re
import subprocess
import threading
import tty
from pathlib import Path

import pytest

from conftest import STATUS
from driver import process
from driver.waiting import TimedOut, until

DOCUMENT = Path(__file__).parents[2] / "docs" / "accessibility.md"
SERVE = {
    "TCP": {"443": {"HTTPS": True}, "8443": {"HTTPS": True}},
    "Web": {
        "host.example.ts.net:443": {"Handlers": {"/": {"Proxy": "http://127.0.0.1:3000"}}},
        "host.example.ts.net:8443": {"Handlers": {"/notes": {"Text": "hello"}}},
    },
    "AllowFunnel": {"host.example.ts.net:8443": True},
}


class Orca:
    """The screen reader, which logs what it would say."""

    def __init__(self, user):
        self.log = ""
        # Python flushes each line only to a terminal.
        self.terminal, terminal = os.openpty()
        tty.setraw(terminal)
        threading.Thread(target=self.read, daemon=True).start()
        self.child = process.start(
            "orca", "--replace", "--user-prefs", user.folder / "orca", "--debug-file", os.ttyname(terminal),
            env=user.environment, log=user.folder / "orca.log",
        )

    def read(self):
        decoder = codecs.getincrementaldecoder("utf-8")("replace")
        while part := os.read(self.terminal, 65536):
            self.log += decoder.decode(part)

    def said(self):
        """Everything so far except the names of pressed keys."""
        return re.findall(r"^\S+ - SPEECH OUTPUT: '(.+)'(?: voice=\w+)?\{", self.log, re.MULTILINE)


@pytest.fixture
def orca(user):
    orca = Orca(user)
    until("the screen reader", lambda: "Screen reader on." in orca.said())
    yield orca
    process.end(orca.child)


def steps():
    """The document's steps, each with the lines that follow it."""
    transcript = re.search(r"^```text\n(.*?)^```", DOCUMENT.read_text(), re.MULTILINE | re.DOTALL)[1]
    return [(part.split("\n")[0], part.split("\n")[1:-1]) for part in transcript.split("> ")[1:]]


def take(step, user, orca):
    """Does what a step says; one in parentheses changes what tailscale answers."""
    match step.split(" ", 1):
        case ["start"]:
            user.start()
        case ["type", text]:
            user.xdotool("type", text)
            until("the text to be there", lambda: f"tailscale serve --bg --yes {text}" in orca.log)
        case ["(tailscale", "fails)"]:
            user.tailscale("echo no such port; exit 1")
        case ["(tailscale", "works)"]:
            user.answer(STATUS, SERVE)
        case [key]:
            user.key(key)


def version():
    return subprocess.run(["orca", "--version"], capture_output=True, text=True).stdout


@pytest.mark.skipif(not version().startswith("43"), reason="another version says it in other words")
def test_orca_43_says_what_the_document_says(user, orca):
    user.answer(STATUS, SERVE)
    wanted = orca.said()
    heard = []
    for step, lines in steps():
        before = len(orca.said())
        take(step, user, orca)
        wanted = wanted + lines
        try:
            until(f"what follows {step}", lambda: len(orca.said()) >= len(wanted), patience=20)
        except TimedOut:
            break
        finally:
            heard += [f"> {step}", *orca.said()[before:]]
    assert orca.said() == wanted, "\n".join(heard)
