# SPDX-License-Identifier: MIT
"""The window on a Wayland compositor."""

import json
import os
import pwd
import shutil
import signal
import tempfile
from pathlib import Path

import pytest

from driver import process
from driver.waiting import until

APPLICATION = "com.brevane.brevane"


class Compositor:
    """A sway without a screen. It does not run as root, so it runs as nobody for root."""

    def __init__(self, user):
        self.user = user
        # The paths of sockets must be short.
        self.folder = Path(tempfile.mkdtemp(prefix="brevane-wayland-", dir="/tmp"))
        (self.folder / "config").write_text("output HEADLESS-1 resolution 1280x900\n")
        account = {}
        if os.geteuid() == 0:
            nobody = pwd.getpwnam("nobody")
            os.chown(self.folder, nobody.pw_uid, nobody.pw_gid)
            account = {"user": nobody.pw_uid, "group": nobody.pw_gid, "extra_groups": []}
        self.environment = {
            "PATH": os.environ["PATH"],
            "HOME": str(self.folder),
            "XDG_RUNTIME_DIR": str(self.folder),
            "WLR_BACKENDS": "headless",
            "WLR_LIBINPUT_NO_DEVICES": "1",
            "WLR_RENDERER": "pixman",
        }
        self.log = self.folder / "log"
        self.server = process.start("sway", "--config", self.folder / "config", env=self.environment, log=self.log, **account)
        self.environment["SWAYSOCK"] = str(until("the compositor's control socket", lambda: next(self.folder.glob("sway-ipc.*"), None)))
        self.socket = until("the compositor", lambda: next((path for path in self.folder.glob("wayland-*") if path.suffix != ".lock"), None))
        until("the compositor's answer", lambda: self.tell("-t", "get_version"))

    def end(self):
        process.end(self.server)
        shutil.rmtree(self.folder, ignore_errors=True)

    def tell(self, *words):
        """Sends a command, and returns the answer."""
        command = ["env", *(f"{name}={value}" for name, value in self.environment.items()), "swaymsg", "--raw", *words]
        answer = self.user.ask(*command)
        return json.loads(answer) if answer else None

    def windows(self):
        """What the compositor knows of each window on the screen."""

        def below(node):
            if node.get("app_id") is not None:
                yield node
            for child in node["nodes"] + node["floating_nodes"]:
                yield from below(child)

        return [window for window in below(self.tell("-t", "get_tree")) if window["visible"]]


@pytest.fixture
def compositor(user):
    compositor = Compositor(user)
    del user.environment["DISPLAY"]
    user.environment |= {"WAYLAND_DISPLAY": str(compositor.socket), "QT_QPA_PLATFORM": "wayland", "XDG_SESSION_TYPE": "wayland"}
    yield compositor
    compositor.end()


def start(user, compositor):
    """Starts the program and waits for its window."""
    child = user.launch()
    until("the window", lambda: [window for window in compositor.windows() if window["pid"] == child.pid])
    return child


def test_window_and_desktop_file_have_the_same_name(user, compositor):
    start(user, compositor)
    (window,) = compositor.windows()
    assert (window["name"], window["app_id"]) == ("Brevane", APPLICATION)
    assert window["focused"]
    assert (Path(__file__).parents[2] / f"packaging/linux/{APPLICATION}.desktop").exists()


@pytest.mark.parametrize("scale", ["1", "1.25", "2"])
def test_a_share_is_added_and_the_window_closed_at_every_scale(user, compositor, scale):
    compositor.tell("output", "HEADLESS-1", "scale", scale)
    user.tailscale(f'echo "$*" >>{user.folder}/asked')
    child = start(user, compositor)
    window = user.window(child)
    window.field("Port or URL").write("3000")
    window.start()
    until("the command", lambda: "serve --bg --yes 3000" in (user.folder / "asked").read_text().splitlines())
    compositor.tell(f"[app_id={APPLICATION}]", "kill")
    assert child.wait(10) == 0
    assert user.processes() == {}


def test_a_source_type_is_chosen_with_the_keyboard(user, compositor):
    window = user.window(start(user, compositor))
    # At a person's pace, in one go: each wtype is a new keyboard, and its arrival closes an open list.
    user.ask(*"wtype -s 500 -M shift -k Tab -m shift -s 300 -k space -s 500 -k Down -s 300 -k Down -s 300 -k Return -s 300 -k Tab -s 300 hello".split())
    field = window.field("Directory Path")
    until("the text", lambda: field.text == "hello")


def test_a_second_start_hands_its_activation_token_over(user, compositor):
    user.environment["WAYLAND_DEBUG"] = "1"
    start(user, compositor)
    assert user.launch(environment=user.environment | {"XDG_ACTIVATION_TOKEN": "token-1"}).wait(10) == 0
    until("the window to be activated", lambda: '.activate("token-1", ' in (user.folder / "program.log").read_text())


@pytest.mark.parametrize("number", [signal.SIGTERM, signal.SIGINT])
def test_signals_are_a_quit(user, compositor, number):
    child = start(user, compositor)
    child.send_signal(number)
    assert child.wait(10) == 0
    assert user.processes() == {}


def test_a_compositor_that_goes_away_is_a_failure(user, compositor):
    child = start(user, compositor)
    process.end(compositor.server)
    # Qt 6.8 ends the process itself, with -1.
    assert child.wait(10) in (1, 255)
    assert user.processes() == {}
