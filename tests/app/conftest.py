# SPDX-License-Identifier: MIT
"""The running program, with a tailscale that does what a test wants."""

import json
import os
import signal
import socket
import subprocess
import sys
import time
import uuid
from contextlib import suppress
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).parents[1] / "e2e"))

from driver import accessibility, process, screen  # noqa: E402
from driver.screen import desktop  # noqa: E402, F401
from driver.waiting import until  # noqa: E402
from driver.window import Window  # noqa: E402

STATUS = {"BackendState": "Running", "Self": {"DNSName": "host.example.ts.net.", "TailscaleIPs": ["100.64.0.1"], "HostName": "host"}}


def free_port():
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


def connected(port):
    """Waits for a server on this port and returns a socket connected to it."""

    def connect():
        visitor = socket.socket()
        return visitor if visitor.connect_ex(("127.0.0.1", port)) == 0 else None

    return until("the server", connect)


def pytest_addoption(parser):
    parser.addoption("--program", required=True, help="the program, built for the tailscale of this folder")
    screen.add_option(parser)


def pytest_configure(config):
    config.addinivalue_line("markers", "x11: what only an X server or a window manager can do")


def pytest_collection_modifyitems(config, items):
    if config.getoption("--screen") == "wayland":
        chosen = [item for item in items if not item.get_closest_marker("x11")]
        config.hook.pytest_deselected(items=[item for item in items if item not in chosen])
        items[:] = chosen


@pytest.fixture
def user(pytestconfig, desktop, tmp_path):
    user = User(pytestconfig.getoption("--program"), desktop, tmp_path)
    yield user
    user.end()


@pytest.fixture
def served(user):
    """A folder with a large file, recorded as shared by the last run. Returns its port."""
    return record_share(user)


def record_share(user):
    port = free_port()
    folder = user.folder / "shared"
    folder.mkdir()
    (folder / "large").write_bytes(bytes(200_000_000))
    preferences = user.folder / "config" / "brevane" / "preferences.json"
    preferences.parent.mkdir(parents=True)
    preferences.write_text(json.dumps({"TailscaleManagedServers": {str(port): {"path": str(folder), "type": "directory"}}}))
    handlers = {"Handlers": {"/": {"Proxy": f"http://127.0.0.1:{port}"}}}
    user.answer({"BackendState": "Running"}, {"TCP": {"443": {"HTTPS": True}}, "Web": {"host.example.ts.net:443": handlers}})
    return port


class User:
    """A user with preferences and a tailscale of their own."""

    def __init__(self, program, desktop, folder):
        self.program = program
        self.desktop = desktop
        self.folder = folder
        self.mark = str(uuid.uuid4())
        self.environment = desktop.environment | {
            "XDG_CONFIG_HOME": str(folder / "config"),
            "FAKE_TAILSCALE": str(folder / "tailscale"),
            "BREVANE_TEST": self.mark,
        }
        self.answer(STATUS, {})

    def answer(self, status, serve):
        """Makes tailscale print these documents as status and serve status."""
        (self.folder / "status.json").write_text(json.dumps(status))
        (self.folder / "serve.json").write_text(json.dumps(serve))
        self.tailscale(f'if [ "$1" = status ]; then cat {self.folder}/status.json; else cat {self.folder}/serve.json; fi')

    def tailscale(self, script):
        """Makes tailscale run this sh script."""
        command = self.folder / "tailscale"
        command.write_text(f"#!/bin/sh\n{script}\n")
        command.chmod(0o755)

    def launch(self, *arguments, environment=None, **options):
        return process.start(
            self.program, *arguments, env=environment or self.environment, log=self.folder / "program.log", **options
        )

    def start(self):
        """Starts the program and waits for its window."""
        child = self.launch()

        def shown():
            assert child.poll() is None, (self.folder / "program.log").read_text()
            return self.windows("Brevane", child.pid)

        until("the window", shown)
        return child

    def window(self, child):
        """The main window, seen through its accessibility interface."""
        return Window(until("the program", lambda: accessibility.application(child.pid)), self.desktop)

    def await_keyboard(self, child, title="Brevane"):
        """Waits until the window with this title has the keyboard, as the desktop sees it and as the program does: on Wayland, Qt
        takes notice a round trip later, and until then Ctrl+W closes the window that had it before."""
        windows = until("the program", lambda: accessibility.application(child.pid))
        until(f"{title} to have the keyboard", lambda: self.active_title() == title and windows.await_one(title).has("active"))

    def key(self, *combinations):
        """Presses keys in the focused window."""
        self.desktop.key(*combinations)

    def open_menu(self, letter):
        """Opens a menu at a person's pace. With assistive technology, Qt sends each key over the bus before handling it, but
        opens a menu at once: an Alt that arrives after its letter closes the menu again."""
        for act, key in (self.desktop.hold, "alt"), (self.key, letter), (self.desktop.release, "alt"):
            act(key)
            time.sleep(0.3)

    def windows(self, title, pid):
        """The identifiers of the windows on the screen with this title."""
        return self.desktop.windows(pid, title)

    def active_title(self):
        return self.desktop.active_title()

    def xdotool(self, *words):
        return self.ask("xdotool", *words)

    def ask(self, *command):
        """What a command prints; empty if it cannot be answered."""
        asked = subprocess.run([str(word) for word in command], env=self.environment, capture_output=True, text=True, timeout=60)
        return asked.stdout

    def processes(self):
        """The command lines of all running processes that this user's programs have started, by process identifier."""
        found = {}
        for folder in Path("/proc").glob("[0-9]*"):
            try:
                if self.mark.encode() in (folder / "environ").read_bytes():
                    found[int(folder.name)] = (folder / "cmdline").read_bytes().replace(b"\0", b" ").decode()
            except OSError:
                continue
        return found

    def end(self):
        for pid in self.processes():
            with suppress(ProcessLookupError):
                os.kill(pid, signal.SIGKILL)
