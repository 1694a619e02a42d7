# SPDX-License-Identifier: MIT
"""That no program started by this one, such as a browser, inherits its descriptors."""

import os
from pathlib import Path

from conftest import connected
from driver.waiting import until


def inherited(pid):
    """The descriptors, beyond the standard ones, that a program started by this one would inherit."""
    found = {}
    for entry in Path(f"/proc/{pid}/fdinfo").iterdir():
        number = int(entry.name)
        try:
            flags = int(entry.read_text().split("flags:")[1].split()[0], 8)
            leads_to = os.readlink(f"/proc/{pid}/fd/{number}")
        except FileNotFoundError:
            continue
        if number > 2 and not flags & os.O_CLOEXEC:
            found[number] = leads_to
    return found


def test_every_descriptor_is_closed_on_exec(user, served):
    child = user.start()
    window = user.window(child)
    window.await_idle()
    visitor = connected(served)
    visitor.sendall(b"GET /large HTTP/1.1\r\nHost: host\r\n\r\n")
    assert visitor.recv(4) == b"HTTP"
    user.tailscale("sleep 1001")
    window.refresh_button().press()
    until("a command to run", lambda: any("1001" in line for line in user.processes().values()))
    assert inherited(child.pid) == {}
    visitor.close()
