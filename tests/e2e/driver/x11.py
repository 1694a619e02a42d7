# SPDX-License-Identifier: MIT
"""A desktop on X11."""

import subprocess

from .desktop import Desktop
from .waiting import until


class X11Desktop(Desktop):
    """An X server without a monitor, and a window manager."""

    def start_screen(self):
        self.environment |= {"XDG_SESSION_TYPE": "x11", "QT_QPA_PLATFORM": "xcb"}
        self.environment["DISPLAY"] = self.start_server()
        until("the screen", lambda: self.answers("xdotool", "getdisplaygeometry"))
        self.start("openbox", "--sm-disable")
        until("the window manager", lambda: self.answers("xdotool", "get_num_desktops"))

    def start_server(self):
        """Starts an X server, the last of the desktop's children then, and returns its display."""
        # Without -noreset, the server resets when its last client leaves, and drops those that are just connecting.
        return ":" + self.announced("Xvfb", "-displayfd", "{fd}", "-screen", "0", "1280x900x24", "-nolisten", "tcp", "-noreset")

    def key(self, *combinations):
        """Presses keys, such as "Home" or "ctrl+w", in the focused window."""
        for combination in combinations:
            self.xdotool("key", combination)

    def hold(self, key):
        self.xdotool("keydown", key)

    def release(self, key):
        self.xdotool("keyup", key)

    def type(self, text):
        self.xdotool("type", text)

    def xdotool(self, *words):
        subprocess.run(["xdotool", *words], env=self.environment, check=True)

    def windows(self, pid, title="Brevane"):
        """The identifiers of a program's visible windows with this title."""
        found = self.ask("xdotool", "search", "--onlyvisible", "--all", "--pid", pid, "--name", f"^{title}$")
        return [int(window) for window in found.split()]

    def active_title(self):
        """The title of the window that has the keyboard."""
        return self.ask("xdotool", "getactivewindow", "getwindowname").strip()

    def activate(self, window):
        self.xdotool("windowactivate", str(window))

    def clipboard(self):
        """The text on the clipboard; empty if there is none."""
        return self.ask("xclip", "-out", "-selection", "clipboard")

    def screenshot(self, path):
        subprocess.run(["scrot", "--overwrite", str(path)], env=self.environment, check=True, stdin=subprocess.DEVNULL)
