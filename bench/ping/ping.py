# SPDX-License-Identifier: MIT
"""Usage: ping.py PROGRAM [MEASURE...]

Sends the window of the running program a ping (_NET_WM_PING, Extended Window Manager Hints) every 10 ms while the
program is busy, and measures how long the replies take, which Qt sends from the main thread. Prints, for each
measure, the 99th percentile and the maximum in milliseconds as lines of JSON. Pings do not wait for the reply to
the previous one. ping.idle is the machine's own share.
"""

import json
import select
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from Xlib import X, display
from Xlib.protocol import event

ROOT = Path(__file__).parents[2]
sys.path[:0] = [str(ROOT / "tests" / "app"), str(ROOT / "tests" / "e2e")]

import conftest  # noqa: E402
from driver.waiting import until  # noqa: E402
from driver.x11 import X11Desktop  # noqa: E402

INTERVAL = 0.01
SHORTEST = 3.0  # seconds of each measure

# Runs 100 downloads of one address, repeatedly.
VISITORS = """
import selectors, socket, sys
chosen = selectors.DefaultSelector()
def visit():
    visitor = socket.create_connection(("127.0.0.1", int(sys.argv[1])))
    visitor.sendall(b"GET /large HTTP/1.1\\r\\nHost: host\\r\\n\\r\\n")
    visitor.setblocking(False)
    chosen.register(visitor, selectors.EVENT_READ)
for _ in range(100):
    visit()
buffer = bytearray(1 << 20)
while True:
    for key, _ in chosen.select():
        if not key.fileobj.recv_into(buffer):
            chosen.unregister(key.fileobj)
            key.fileobj.close()
            visit()
"""


class Pinger:
    """A client of the X server that stands in for the window manager."""

    def __init__(self, name, window):
        self.display = display.Display(name)
        self.root = self.display.screen().root
        self.root.change_attributes(event_mask=X.StructureNotifyMask | X.SubstructureNotifyMask)
        self.window = self.display.create_resource_object("window", window)
        self.protocols = self.display.get_atom("WM_PROTOCOLS")
        self.ping = self.display.get_atom("_NET_WM_PING")

    def times(self, busy):
        """Pings while the program is busy; returns how long each reply took in milliseconds, sorted."""
        sent, times, number = {}, [], 0
        start = next_one = time.monotonic()
        while sent or time.monotonic() < start + SHORTEST or busy():
            now = time.monotonic()
            done = now >= start + SHORTEST and not busy()
            if now >= next_one and not done:
                number += 1
                data = (32, [self.ping, number, self.window.id, 0, 0])
                message = event.ClientMessage(window=self.window, client_type=self.protocols, data=data)
                self.window.send_event(message)
                self.display.flush()
                sent[number] = time.monotonic()
                next_one = max(next_one + INTERVAL, now)
            select.select([self.display], [], [], max(0, next_one - time.monotonic()))
            while self.display.pending_events():
                answer = self.display.next_event()
                if answer.type == X.ClientMessage and answer.window == self.root and answer.data[1][0] == self.ping:
                    times.append(1000 * (time.monotonic() - sent.pop(answer.data[1][1])))
            if sent and time.monotonic() - min(sent.values()) > 30:
                raise TimeoutError("no answer for half a minute")
        return sorted(times)


def report(name, times):
    for figure, value in (("p99", times[int(0.99 * (len(times) - 1))]), ("longest", times[-1])):
        line = {"name": f"ping.{name}.{figure}", "value": round(value, 2), "unit": "ms", "peer": None, "peer_value": None, "ratio": None}
        print(json.dumps(line | {"note": f"{len(times)} pings"}), flush=True)


class Measures:
    """Each measure starts the program, makes it work and returns a function that says whether it is busy."""

    def __init__(self, user):
        self.user = user
        self.children = []

    def idle(self):
        self.start()
        return lambda: False

    def downloads(self):
        port = conftest.record_share(self.user)
        self.start()
        conftest.connected(port).close()
        self.children.append(subprocess.Popen([sys.executable, "-c", VISITORS, str(port)]))
        return lambda: False

    def output(self):
        """A refresh and an add whose commands print 100 MB instead of JSON and a short message."""
        size = 100_000_000
        self.start()
        self.user.tailscale(f"head -c {size} /dev/zero | tr '\\0' 'x' | fold -w 120; exit 1")
        self.window.fill("Port / App URL", "3000")
        self.window.start()
        return self.shown_busy()

    def documents(self):
        """A refresh that reads 10 MB of peers and 10 MB of shared text."""
        peers = {f"nodekey:{n:064}": {"HostName": f"node-{n}", "TailscaleIPs": ["100.64.0.2"] * 50} for n in range(10_000)}
        status = conftest.STATUS | {"Peer": peers}
        handlers = {f"/{n}": {"Text": "x" * 1_000_000} for n in range(10)}
        self.start()
        self.user.answer(status, {"TCP": {"443": {"HTTPS": True}}, "Web": {"host.example.ts.net:443": {"Handlers": handlers}}})
        self.window.refresh_button().press()
        return self.shown_busy()

    def shells(self):
        self.start()
        self.user.tailscale("while :; do echo line; sleep 0.001; done")
        self.window.refresh_button().press()
        return lambda: False

    def flushes(self):
        """An add while each flush to disk takes two seconds."""
        delay = ("--inject=fsync,fdatasync:delay_enter=2000000", "--seccomp-bpf", "-f", "-qq", "-o", "/dev/null")
        self.start("strace", *delay)
        folder = self.user.folder / "to-share"
        folder.mkdir()
        self.window.fill("Directory", str(folder))
        self.window.start()
        until_shown = time.monotonic() + 8
        return lambda: time.monotonic() < until_shown

    def start(self, *wrapper):
        if wrapper:
            self.user.program, program = wrapper[0], self.user.program
            self.child = self.user.launch(*wrapper[1:], program)
            self.user.program = program
        else:
            self.child = self.user.launch()
        until("the window", lambda: self.user.xdotool("search", "--onlyvisible", "--name", "^Brevane$"))
        self.id = int(self.user.xdotool("search", "--onlyvisible", "--name", "^Brevane$").split()[0])
        pid = int(self.user.xdotool("getwindowpid", self.id))
        self.window = conftest.Window(until("the program", lambda: conftest.accessibility.application(pid)), self.user.desktop)
        self.window.await_idle()
        time.sleep(0.5)

    def shown_busy(self):
        """Returns a function that is true until three seconds have passed without a command."""
        last = [time.monotonic()]

        def busy():
            if time.monotonic() > last[0] + 0.5 and len(self.user.processes()) > 1:
                last[0] = time.monotonic()
            return time.monotonic() < last[0] + 3

        return busy

    def end(self):
        for child in self.children:
            child.kill()
        self.user.end()
        self.child.wait()


def main(program, names):
    known = ("idle", "downloads", "output", "documents", "shells", "flushes")
    folder = tempfile.mkdtemp(prefix="brevane-ping-")
    with X11Desktop(folder) as desktop:
        for name in [word.removeprefix("ping.") for word in names] or known:
            own = Path(tempfile.mkdtemp(prefix="user-", dir=folder))
            measures = Measures(conftest.User(program, desktop, own))
            try:
                busy = getattr(measures, name)()
                report(name, Pinger(desktop.environment["DISPLAY"], measures.id).times(busy))
            except (TimeoutError, AssertionError) as failure:
                print(json.dumps({"name": f"ping.{name}", "failed": str(failure)}), flush=True)
            finally:
                measures.end()
    shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:])
