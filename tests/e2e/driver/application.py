# SPDX-License-Identifier: MIT
"""The program under test, from its start to its end."""

import json

from . import accessibility, process
from .waiting import until
from .window import Window

RECORD = "TailscaleManagedServers"


class Application:
    """One run of the program, with the desktop's folder of preferences."""

    def __init__(self, program, desktop):
        self.program = program
        self.desktop = desktop
        self.child = None
        self.window = None
        self.mounts = None  # its mount namespace, if it has its own

    @property
    def preferences(self):
        file = self.desktop.folder / "config" / "brevane" / "preferences.json"
        return self.mounts.seen(file) if self.mounts else file

    @property
    def log(self):
        """What the program has written to its standard streams."""
        return self.desktop.folder / "application.log"

    def managed(self):
        """The record of managed servers, a dictionary by port; None if there is none yet."""
        try:
            return json.loads(self.preferences.read_bytes()).get(RECORD)
        except FileNotFoundError:
            return None

    def launch(self):
        """Starts the program and returns its process."""
        command = self.mounts.inside(self.program) if self.mounts else [self.program]
        self.child = process.start(*command, env=self.desktop.environment, log=self.log)
        return self.child

    def start(self):
        """Starts the program and waits until its window is shown and has been filled."""
        self.launch()
        root = until("the program to appear", lambda: self.alive() and accessibility.application(self.child.pid))
        self.window = Window(root, self.desktop)
        until("the window on the screen", lambda: self.alive() and self.desktop.windows(self.child.pid))
        self.window.await_idle()
        return self.window

    def alive(self):
        status = self.child.poll()
        assert status is None, f"the program ended with status {status} and wrote: {self.log.read_text()}"
        return True

    def quit(self):
        """Closes the window by key and returns the exit status."""
        self.desktop.key("ctrl+w")
        return self.child.wait(10)

    def end(self):
        if self.child:
            process.end(self.child)
