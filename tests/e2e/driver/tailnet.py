# SPDX-License-Identifier: MIT
"""The tailnet of the node that runs the window, and of a second node that visits it."""

import json
import re
import subprocess
from contextlib import contextmanager
from pathlib import Path

from . import process
from .waiting import until

HOST = "host"  # runs the window
PEER = "peer"  # visits its shares


class Tailnet:
    """A context manager: runs until the end of the `with` block, or of the driver."""

    def __init__(self, programs, folder):
        self.programs = Path(programs)
        self.folder = Path(folder)
        self.child = None

    def __enter__(self):
        self.folder.parent.mkdir(parents=True, exist_ok=True)
        # It ends when its standard input closes, at the latest when this process ends.
        self.child = process.start(
            self.programs / "tailnet", "run", "--until-eof", "--bin", self.programs, "--dir", self.folder,
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
        )  # fmt: skip
        line = self.child.stdout.readline()
        if not line:
            raise RuntimeError(f"the tailnet did not start: {self.child.stderr.read().strip()}")
        self.record = json.loads(line)
        return self

    def __exit__(self, *_):
        self.child.stdin.close()
        complaints = self.child.stderr.read().splitlines()
        self.child.wait(20)
        # Before 1.82 a daemon checks whether its certificate is due; nothing else may leave this machine.
        complaints = [line for line in complaints if not line.endswith("CONNECT acme-v02.api.letsencrypt.org:443")]
        assert not complaints, complaints

    @property
    def name(self):
        """The full name of the node that shares."""
        return self.record["nodes"][HOST]["fqdn"]

    def url(self, path="/", port=443):
        return f"https://{self.name}{'' if port == 443 else f':{port}'}{path}"

    def tailscale(self, *arguments, node=HOST):
        """Runs a node's tailscale and returns what it printed."""
        command = [self.record["nodes"][node]["cli"], *arguments]
        return subprocess.run(command, check=True, capture_output=True, text=True, timeout=60).stdout

    @property
    def version(self):
        """Tailscale's version, such as (1, 102, 5)."""
        return tuple(int(number) for number in self.record["version"].split("-")[0].split("."))

    def said(self, *arguments):
        """What the host's tailscale prints when it refuses these arguments."""
        refused = subprocess.run([self.record["nodes"][HOST]["cli"], *arguments], capture_output=True, text=True, timeout=60)
        assert refused.returncode, refused
        return (refused.stdout + refused.stderr).strip()

    def command_line(self, prefix="", socket=None):
        """The shell command that runs the host's tailscale, with a prefix or another socket."""
        line = Path(self.record["nodes"][HOST]["cli"]).read_text().splitlines()[-1]
        if socket:
            line = re.sub(r"--socket='[^']*'", f"--socket='{socket}'", line)
        return line.replace("exec ", f"exec {prefix} ")

    @contextmanager
    def command_replaced(self, script):
        """Replaces the host's tailscale with a script, or removes it if that is None."""
        command = Path(self.record["nodes"][HOST]["cli"])
        kept = command.rename(command.with_suffix(".kept"))
        try:
            if script is not None:
                command.write_text(f"#!/bin/sh\n{script}\n")
                command.chmod(0o755)
            yield
        finally:
            kept.replace(command)

    @contextmanager
    def stopped(self):
        """Runs "tailscale down" on the host, and "tailscale up" at the end."""
        self.tailscale("down")
        try:
            yield
        finally:
            self.tailscale("up", f"--login-server={self.record['control']}", f"--hostname={HOST}", "--accept-dns=false")
            self.await_reached()

    def account(self):
        """The host's current account, as "tailscale switch" names it."""
        lines = self.tailscale("switch", "--list").splitlines()
        return next(line.split()[0] for line in lines if line.rstrip().endswith("*"))

    def log_in(self, hostname):
        """Logs the host in to another account, switches to it and returns it."""
        # Tailscale distinguishes accounts by user and server name, so another name for the server is another account.
        server = self.record["control"].replace("127.0.0.1", "localhost")
        self.tailscale("login", f"--login-server={server}", f"--hostname={hostname}", "--accept-dns=false")
        self.await_running()
        return self.account()

    def switch(self, account):
        self.tailscale("switch", account)
        self.await_running()

    def await_running(self):
        def runs():
            status = json.loads(self.tailscale("status", "--json"))
            return status["BackendState"] == "Running" and status["Self"]["DNSName"]

        return until("the host to be in its tailnet", runs).rstrip(".")

    def await_reached(self):
        """Waits until the second node reaches the first again. Older versions take a while to agree on new keys."""
        until("the second node to reach the first again", self.reaches_again)

    def reaches_again(self):
        ping = [self.record["nodes"][PEER]["cli"], "ping", "--tsmp", "-c", "1", "--timeout", "2s", HOST]
        return subprocess.run(ping, capture_output=True, timeout=60).returncode == 0

    def commands(self):
        """The command lines of the host's running tailscale processes."""
        socket = re.search(r"--socket='([^']*)'", self.command_line())[1]
        lines = [process.command_line(pid) for pid in process.running()]
        return [line for line in lines if f"--socket={socket}" in line and line[0].endswith("/tailscale")]

    def serve_status(self):
        return json.loads(self.tailscale("serve", "status", "--json"))

    def fetch(self, path, port=443, funnel=False, head=False, output=None):
        """What the first node returns for a path to the second node, or to a visitor from the internet.

        A dictionary with status, headers, bytes, sha256 and, for short text, body. Raises Unreachable
        if there is no answer.
        """
        options = ["--funnel"] * funnel + ["--head"] * head + (["--output", output] if output else [])
        return json.loads(self.visit("fetch", *options, self.url(path, port)))

    def dial(self, port, data, funnel=False):
        """Sends bytes to a TCP port of the first node and returns what it sends until it closes.

        Raises Unreachable if that is nothing.
        """
        answer = self.visit("dial", *["--funnel"] * funnel, f"{self.name}:{port}", data=data)
        if not answer:
            # A relay accepts a connection before it knows whether the node does.
            raise Unreachable(f"port {port} closed without a word")
        return answer

    def visit(self, command, *arguments, data=b""):
        words = [self.programs / "tailnet", command, "--dir", self.folder, "--from", PEER, *arguments]
        visited = subprocess.run(words, input=data, capture_output=True, timeout=120)
        if visited.returncode:
            raise Unreachable(visited.stderr.decode().strip())
        return visited.stdout


class Unreachable(Exception):
    """A visitor could not connect, or got no answer."""
