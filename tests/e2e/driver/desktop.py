# SPDX-License-Identifier: MIT
"""A screen of our own, with everything that a window expects of a desktop."""

import os
import subprocess
from pathlib import Path

from . import process
from .waiting import until

# The only variables of the session that the window gets.
KEPT = ("PATH", "HOME", "USER", "LOGNAME", "SHELL", "TMPDIR", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS")


class Desktop:
    """A message bus and the accessibility service. X11Desktop and WaylandDesktop add the screen.

    One per driver process: the accessibility library stays connected to the first bus.
    """

    def __init__(self, folder):
        self.folder = Path(folder)
        self.children = []
        for name in ("runtime", "config", "cache", "data"):
            (self.folder / name).mkdir(mode=0o700)
        self.environment = {name: os.environ[name] for name in KEPT if name in os.environ} | {
            "LC_ALL": "C.UTF-8",
            "XDG_RUNTIME_DIR": str(self.folder / "runtime"),
            "XDG_CONFIG_HOME": str(self.folder / "config"),
            "XDG_CACHE_HOME": str(self.folder / "cache"),
            "XDG_DATA_HOME": str(self.folder / "data"),
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            # Qt warns of AT-SPI features that it does not know.
            "QT_LOGGING_RULES": "qt.accessibility.atspi.warning=false",
        }

    def __enter__(self):
        try:
            self.start_screen()
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.announced("dbus-daemon", "--session", "--nofork", "--print-address={fd}")
            # The accessibility library finds its bus through these.
            os.environ.update(self.environment)
            self.await_accessibility()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for child in reversed(self.children):
            process.end(child)
        self.children.clear()

    def assert_whole(self):
        """Fails if a part of the desktop has ended."""
        for child in self.children:
            assert child.poll() is None, f"{child.args} ended with status {child.returncode}; see {self.folder}"

    def start(self, *command, **options):
        child = process.start(*command, env=self.environment, log=self.folder / f"{command[0]}.log", **options)
        self.children.append(child)
        return child

    def announced(self, *command):
        """Starts a server that writes its address to a descriptor, and returns the address."""
        reader, writer = os.pipe()
        try:
            self.start(*(word.format(fd=writer) for word in command), pass_fds=(writer,))
        finally:
            os.close(writer)
        with os.fdopen(reader) as announcement:
            line = announcement.readline().strip()
        if not line:
            raise RuntimeError(f"{command[0]} did not start; see {self.folder}/{command[0]}.log")
        return line

    def answers(self, *question):
        """Whether a command that queries a part of the desktop succeeds."""
        self.assert_whole()
        return subprocess.run(question, env=self.environment, capture_output=True).returncode == 0

    def ask(self, *command, text=True):
        """What a command prints, as text or as bytes; empty if it fails."""
        words = [str(word) for word in command]
        return subprocess.run(words, env=self.environment, capture_output=True, text=text, timeout=60).stdout

    def await_accessibility(self):
        """Waits for the registry, which misses programs that start before it."""
        asks = ("dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress")
        until("the accessibility service", lambda: self.answers(*asks))
        from . import accessibility

        until("the accessibility registry", accessibility.is_ready)
