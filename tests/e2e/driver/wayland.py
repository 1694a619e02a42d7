# SPDX-License-Identifier: MIT
"""A desktop on Wayland."""

import json
import os
import pwd
import shutil
import subprocess
import tempfile
from pathlib import Path

from . import process
from .desktop import Desktop
from .keyboard import Keyboard
from .waiting import until

CONFIGURATION = """
output HEADLESS-1 resolution 1280x900
xwayland disable
# Like most desktops, let programs bring their windows to the front.
focus_on_window_activation focus
"""


class Compositor:
    """A sway without a monitor. It does not run as root, so it runs as nobody for root."""

    def __init__(self):
        # The paths of sockets must be short.
        self.folder = Path(tempfile.mkdtemp(prefix="brevane-wayland-", dir="/tmp"))
        (self.folder / "config").write_text(CONFIGURATION)
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
        self.server = process.start(
            "sway", "--config", self.folder / "config", env=self.environment, log=self.folder / "log", **account
        )
        self.environment["SWAYSOCK"] = str(self.appeared("sway-ipc.*.sock"))
        self.socket = self.appeared("wayland-?")
        until("the compositor", lambda: self.tell("-t", "get_version"))

    def appeared(self, name):
        def found():
            assert self.server.poll() is None, (self.folder / "log").read_text()
            return next(self.folder.glob(name), None)

        return until(f"the compositor's {name}", found)

    def tell(self, *words):
        """Sends a command and returns the answer; None if there is none."""
        asked = subprocess.run(["swaymsg", "--raw", *words], env=self.environment, capture_output=True, text=True, timeout=60)
        return json.loads(asked.stdout) if asked.stdout else None

    def windows(self, pid):
        """What the compositor knows of each window of a program that it shows. Menus do not count."""

        def below(node):
            if node.get("pid") == pid and node["visible"] and node["shell"] == "xdg_shell":
                yield node
            for child in node["nodes"] + node["floating_nodes"]:
                yield from below(child)

        return list(below(self.tell("-t", "get_tree")))

    def focused(self):
        """The window that has the keyboard; None if there is none."""

        def below(node):
            if node.get("pid") and node["focused"]:
                return node
            return next(filter(None, map(below, node["nodes"] + node["floating_nodes"])), None)

        return below(self.tell("-t", "get_tree"))


class WaylandDesktop(Desktop):
    """A compositor, and a keyboard."""

    compositor = None
    keyboard = None

    def start_screen(self):
        self.compositor = Compositor()
        self.children.append(self.compositor.server)
        self.keyboard = Keyboard(self.compositor.socket)
        self.environment |= {
            "WAYLAND_DISPLAY": str(self.compositor.socket),
            "XDG_SESSION_TYPE": "wayland",
            "QT_QPA_PLATFORM": "wayland",
        }

    def __exit__(self, *arguments):
        if self.keyboard:
            self.keyboard.close()
        super().__exit__(*arguments)
        if self.compositor:
            shutil.rmtree(self.compositor.folder, ignore_errors=True)

    def key(self, *combinations):
        """Presses keys, such as "Home" or "ctrl+w", in the focused window."""
        for combination in combinations:
            self.keyboard.press(combination)

    def hold(self, key):
        self.keyboard.turn(key, True)

    def release(self, key):
        self.keyboard.turn(key, False)

    def type(self, text):
        self.key(*text)

    def windows(self, pid, title="Brevane"):
        """The identifiers of a program's visible windows with this title."""
        return [window["id"] for window in self.compositor.windows(pid) if window["name"] == title]

    def active_title(self):
        """The title of the window that has the keyboard."""
        window = self.compositor.focused()
        return window["name"] if window else ""

    def activate(self, window):
        self.compositor.tell(f"[con_id={window}]", "focus")

    def clipboard(self):
        """The text on the clipboard; empty if there is none."""
        return self.ask("wl-paste", "--no-newline")

    def screenshot(self, path):
        subprocess.run(["grim", str(path)], env=self.environment, check=True)
