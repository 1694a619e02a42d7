# SPDX-License-Identifier: MIT
"""Random operations on the service, compared with a model of the expected state after each.

usage: model.py DRIVER (--stand-in PROGRAM | --tailnet FOLDER) [--operations N] [--kills N] [--seed N]

DRIVER is the service (service-driver), PROGRAM replaces tailscale (stand-in-tailscale), FOLDER
contains the programs of a real tailnet on loopback (tools/tailnet/build.sh). After each operation the
daemon's shares, the record on disk, the live servers with their bytes, and the rows are compared
with the model. --kills only adds files and folders, and kills the service at a random instant of
each add: no share of the daemon may be missing from the record. A failure names the operation; the
same seed repeats the run, except for the instants of kills.
"""

import argparse
import functools
import json
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import time
import urllib.error
import urllib.request

from daemons import Real, StandIn

PATHS = ["/", "/a", "/b", "/c", "/d"]
SOURCES = ["Port / App URL", "HTTPS (self-signed)", "Plain Text", "TCP Forward", "File", "Directory"]
NOBODYS_PORTS = range(100, 110)


class Account:
    def __init__(self):
        self.handlers = {}  # URL path: (kind, detail); of a file or folder the detail is its path
        self.forwards = {}  # port: is a funnel
        self.is_funnel = False
        self.ports = {}  # local port of each file or folder share: its path, as last seen


class Model:
    def __init__(self, driver, make_daemon, seed):
        self.random = random.Random(seed)
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="brevane-model-"))
        self.driver = driver
        self.daemon = make_daemon(self.folder)
        self.preferences = self.folder / "preferences.json"
        self.sources = []
        for number in range(6):
            (self.folder / f"folder {number}").mkdir()
            (self.folder / f"folder {number}" / "mark.txt").write_text(f"mark {number}")
            self.sources.append(str(self.folder / f"folder {number}"))
        self.accounts = {name: Account() for name in self.daemon.accounts}
        self.process = None
        self.fails = False
        self.made_before_kill = 0
        self.start()

    # The daemon.

    def handlers(self):
        return self.daemon.config().get("Web", {}).get(self.node + ":443", {}).get("Handlers", {})

    @property
    def node(self):
        return self.daemon.node

    @property
    def account(self):
        return self.accounts[self.node]

    # The service.

    def start(self):
        self.process = subprocess.Popen(
            [self.driver, self.daemon.command, self.daemon.shell, self.preferences],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, env={**os.environ, "BREVANE_STAND_IN": str(self.folder)})

    def send(self, *command):
        self.process.stdin.write(json.dumps(command) + "\n")
        self.process.stdin.flush()

    def run(self, *command):
        self.send(*command)
        answer = self.process.stdout.readline()
        assert answer, f"the service ended with {self.process.wait()}"
        return json.loads(answer)

    def quit(self):
        self.process.stdin.close()
        assert self.process.wait(60) == 0, f"quitting ended with {self.process.returncode}"

    def kill(self):
        self.process.kill()
        self.process.wait()
        # A command outlives the service unless something ends it.
        mark = f"BREVANE_STAND_IN={self.folder}".encode()
        while any(self.has_in_environment(process, mark) for process in pathlib.Path("/proc").glob("[0-9]*")):
            time.sleep(0.001)

    @staticmethod
    def has_in_environment(process, mark):
        try:
            return mark in (process / "environ").read_bytes()
        except OSError:
            return False

    def record(self):
        try:
            stored = json.loads(self.preferences.read_text())
        except FileNotFoundError:
            return {}, {}
        return stored.get("TailscaleManagedServers", {}), stored.get("TailscaleManagedServerNodes", {})

    # The operations. Each changes the model as it must change the daemon, and returns the resulting
    # state.

    def add(self):
        mode = self.random.choice(["Serve", "Funnel"])
        kind = self.random.choice(SOURCES)
        path = self.random.choice(PATHS)
        source = self.make_source(kind)
        if kind == "TCP Forward":
            path = "/"  # Tailscale refuses every other path.
            if mode == "Funnel" and self.daemon.funnel_ports:
                source = self.random.choice(self.daemon.funnel_ports)
        state = self.run("add", mode, kind, source, path)
        assert state["success"] != self.fails, f"the add of {mode} {kind} {source} {path}: {state}"
        if state["success"]:
            self.apply_add(mode, kind, source, path)
        return state

    def make_source(self, kind):
        if kind == "Plain Text":
            return "words " + str(self.random.randrange(100))
        folder = self.random.choice(self.sources)
        if kind == "Directory":
            return folder
        return folder + "/mark.txt" if kind == "File" else str(self.random.choice(NOBODYS_PORTS))

    @staticmethod
    def mount_path(kind, source, path):
        return "/" + source.rsplit("/", 1)[1] if kind == "File" and path == "/" else path

    def apply_add(self, mode, kind, source, path):
        account = self.account
        if kind == "TCP Forward":
            account.forwards[source] = mode == "Funnel"
            return
        account.handlers[self.mount_path(kind, source, path)] = (kind, source)
        account.is_funnel = mode == "Funnel"

    def stop(self):
        handlers = self.handlers()
        target = self.random.choice([handler.get("Proxy", "") for handler in handlers.values()] or [""])
        state = self.run("stop", self.node + ":443", target)
        assert state["success"] == (bool(handlers) and not self.fails), "the stop's success"
        if state["success"]:
            self.account.handlers, self.account.is_funnel = {}, False
        return state

    def reset(self):
        # "all" removes shares from the record even if its commands fail.
        words = ["serve", "funnel"] if self.fails else ["serve", "funnel", "all"]
        state = self.run("reset", self.random.choice(words))
        if not self.fails:
            self.accounts[self.node] = Account()
        return state

    def refresh(self):
        return self.run("refresh")

    def restart(self):
        self.quit()
        self.start()
        return self.run("refresh")

    def kill_and_start(self):
        self.kill()
        self.start()
        return self.run("refresh")

    def kill_during_add(self):
        mode = self.random.choice(["Serve", "Funnel"])
        kind = self.random.choice(SOURCES[4:])
        path = self.random.choice(PATHS)
        source = self.make_source(kind)
        before = self.daemon.config()
        self.daemon.delay(self.random.choice([0, 0, 5, 20]))
        self.send("add", mode, kind, source, path)
        time.sleep(self.random.uniform(0, 0.08))
        self.kill()
        self.daemon.delay(0)
        recorded, _ = self.record()
        for handler in self.handlers().values():
            port = handler.get("Proxy", "").rsplit(":", 1)[-1]
            assert not self.is_ours(handler) or port in recorded, f"the daemon leads to {port}, which is not recorded"
        self.start()
        state = self.run("refresh")
        if self.daemon.config() != before:
            self.made_before_kill += 1
            self.apply_add(mode, kind, source, path)
        return state

    def is_ours(self, handler):
        proxy = handler.get("Proxy", "")
        return proxy.startswith("http://127.0.0.1:") and int(proxy.rsplit(":", 1)[1]) not in NOBODYS_PORTS

    def switch(self):
        """Switches the account; sometimes the service notices only at its next operation."""
        self.daemon.switch(self.random.choice(self.daemon.accounts))
        return self.random.choice([self.refresh, self.add, self.reset, self.stop])()

    def go_down(self):
        self.daemon.stop()
        self.run("refresh")
        self.daemon.run()
        return self.run("refresh")

    def refuse(self):
        self.fails = True
        self.daemon.refuse(True)
        self.random.choice([self.add, self.stop, self.reset])()
        self.daemon.refuse(False)
        self.fails = False
        return self.run("refresh")

    def fill_disk(self):
        """Makes writing the record fail for one operation."""
        obstacle = pathlib.Path(str(self.preferences) + ".new")
        obstacle.unlink(missing_ok=True)  # a killed writer leaves its file behind
        (obstacle / "full").mkdir(parents=True)
        self.random.choice([self.add, self.stop, self.reset])()
        shutil.rmtree(obstacle)
        return self.run("refresh")

    # The comparison.

    def compare(self, state):
        handlers = self.handlers()
        account = self.account
        assert set(handlers) == set(account.handlers), "the daemon's paths"
        account.ports = {}
        rows = []
        for path, (kind, detail) in account.handlers.items():
            handler = handlers[path]
            if kind in ("File", "Directory"):
                assert self.is_ours(handler), f"{path} is {handler}"
                account.ports[handler["Proxy"].rsplit(":", 1)[1]] = detail
            text = handler.get("Text")
            rows.append(["Text", path, text, account.is_funnel] if text is not None
                        else ["Port Proxy", path, handler["Proxy"], account.is_funnel])
        for port, is_funnel in account.forwards.items():
            rows.append(["TCP Forward", "/", "localhost:" + port, is_funnel])
        assert sorted(map(str, rows)) == sorted(map(str, state["rows"])), "the rows"

        recorded, nodes = self.record()
        expected = {}
        for name, other in self.accounts.items():
            for port, path in other.ports.items():
                expected[port] = ({"path": path, "type": "directory" if "mark.txt" not in path else "file"}, name)
        # A share that ended just before a switch may be kept for its account, unserved: the service
        # could not know which account's daemon it had asked.
        for port in [port for port in recorded if port not in expected and nodes.get(port) != self.node]:
            assert self.fetch(port) is None, f"port {port} is served for nobody"
            del recorded[port], state["managed"][port]
        assert {port: (entry, nodes.get(port)) for port, entry in recorded.items()} == expected, \
            f"the record: {recorded} {nodes}, expected {expected}"
        assert state["managed"] == {port: entry["path"] for port, (entry, _) in expected.items()}, "what is managed"
        assert state["error"] is None, state["error"]
        for port, (entry, name) in expected.items():
            served = self.fetch(port)
            for _ in range(30):
                if served or name != self.node:
                    break
                # Another program's connection may briefly occupy the port.
                time.sleep(1)
                self.run("refresh")
                served = self.fetch(port)
            number = entry["path"].split("folder ")[1][0]
            assert served == (f"mark {number}" if name == self.node else None), f"port {port} serves {served}"

    @staticmethod
    def fetch(port):
        try:
            with urllib.request.urlopen(f"http://127.0.0.1:{port}/mark.txt", timeout=30) as answer:
                return answer.read().decode()
        except (urllib.error.URLError, ConnectionError):
            return None

    OPERATIONS = [(add, 30), (stop, 6), (reset, 4), (refresh, 8), (restart, 8), (kill_and_start, 6),
                  (kill_during_add, 10), (switch, 12), (go_down, 4), (refuse, 6), (fill_disk, 6)]

    def step(self, operation=None):
        functions, weights = zip(*self.OPERATIONS)
        operation = operation or self.random.choices(functions, weights)[0]
        self.operation = operation.__name__
        state = operation(self)
        self.compare(state)
        return operation.__name__


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("driver")
    daemon = parser.add_mutually_exclusive_group(required=True)
    daemon.add_argument("--stand-in", type=lambda program: functools.partial(StandIn, program), dest="daemon")
    daemon.add_argument("--tailnet", type=lambda folder: functools.partial(Real, folder), dest="daemon")
    parser.add_argument("--operations", type=int, default=0)
    parser.add_argument("--kills", type=int, default=0)
    parser.add_argument("--seed", type=int, default=random.randrange(1 << 32))
    arguments = parser.parse_args()
    print(f"seed {arguments.seed}", flush=True)
    model = Model(arguments.driver, arguments.daemon, arguments.seed)
    counts = {}
    total = arguments.operations or arguments.kills
    for number in range(1, total + 1):
        try:
            name = model.step(Model.kill_during_add if arguments.kills else None)
        except AssertionError as error:
            print(f"operation {number} ({model.operation}), seed {arguments.seed}: {error}\nleft in {model.folder}")
            model.process.kill()
            model.daemon.end()
            return 1
        counts[name] = counts.get(name, 0) + 1
        if number % 500 == 0:
            print(f"{number} of {total}", flush=True)
    model.quit()
    model.daemon.end()
    shutil.rmtree(model.folder)
    print(f"{total} operations, all as the model says:", ", ".join(f"{n} {c}" for n, c in sorted(counts.items())))
    print(f"of the adds that were killed, {model.made_before_kill} had made their share")
    return 0


sys.exit(main())
