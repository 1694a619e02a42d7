# SPDX-License-Identifier: MIT
"""Message buses that accept a connection and then never reply."""

import os
import signal
import socket
from pathlib import Path

import pytest


def process_of(desktop, part):
    """The process identifier of the desktop's dbus-daemon with this word in its command line."""
    mark = str(desktop.folder).encode()
    for folder in Path("/proc").glob("[0-9]*"):
        try:
            command = (folder / "cmdline").read_bytes()
            if part in command and b"dbus-daemon" in command and mark in (folder / "environ").read_bytes():
                return int(folder.name)
        except OSError:
            continue
    raise LookupError(part)


@pytest.fixture
def stopped(desktop, request):
    bus = process_of(desktop, request.param)
    os.kill(bus, signal.SIGSTOP)
    yield
    os.kill(bus, signal.SIGCONT)


def assert_opens_and_quits(user):
    child = user.start()
    child.send_signal(signal.SIGTERM)
    assert child.wait(3) == 0


@pytest.mark.parametrize("stopped", [b"--session", b"accessibility.conf"], indirect=True, ids=["session", "accessibility"])
def test_the_window_opens_beside_a_bus_that_hangs(user, stopped):
    assert_opens_and_quits(user)


def test_the_window_opens_beside_a_bus_that_never_answers(user):
    path = str(user.folder / "bus")
    with socket.socket(socket.AF_UNIX) as deaf:
        deaf.bind(path)
        deaf.listen()
        user.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={path}"
        assert_opens_and_quits(user)
