# SPDX-License-Identifier: MIT
"""The tailnet that the window's own node is in, seen from its second node."""

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
    """Runs from `with` to the end of it, or of the driver."""

    def __init__(self, programs, folder):
        self.programs = Path(programs)
        self.folder = Path(folder)
        self.child = None

    def __enter__(self):
        self.folder.parent.mkdir(parents=True, exist_ok=True)
        # It ends with its standard input, which ends with us.
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
        # Before 1.82 a daemon asks whether its certificate is due; nothing else may go outside.
        complaints = [line for line in complaints if not line.endswith("CONNECT acme-v02.api.letsencrypt.org:443")]
        assert not complaints, complaints

    @property
    def name(self):
        """The full name of the node that shares."""
        return self.record["nodes"][HOST]["fqdn"]

    def url(self, path="/", port=443):
        return f"https://{self.name}{'' if port == 443 else f':{port}'}{path}"

    def tailscale(self, *arguments, node=HOST):
        """Runs the command line of a node and gives what it printed."""
        command = [self.record["nodes"][node]["cli"], *arguments]
        return subprocess.run(command, check=True, capture_output=True, text=True, timeout=60).stdout

    @property
    def version(self):
        """Of Tailscale, such as (1, 102, 5)."""
        return tuple(int(number) for number in self.record["version"].split("-")[0].split("."))

    def said(self, *arguments):
        """What the host's command line prints about something that it refuses."""
        refused = subprocess.run([self.record["nodes"][HOST]["cli"], *arguments], capture_output=True, text=True, timeout=60)
        assert refused.returncode, refused
        return (refused.stdout + refused.stderr).strip()

    def command_line(self, prefix="", socket=None):
        """The shell command that stands for the host's tailscale: with words before it, or another socket."""
        line = Path(self.record["nodes"][HOST]["cli"]).read_text().splitlines()[-1]
        if socket:
            line = re.sub(r"--socket='[^']*'", f"--socket='{socket}'", line)
        return line.replace("exec ", f"exec {prefix} ")

    @contextmanager
    def command_replaced(self, script):
        """Puts a script in the place of the host's tailscale, or nothing for None."""
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
        """The host as "tailscale down" leaves it."""
        self.tailscale("down")
        try:
            yield
        finally:
            self.tailscale("up", f"--login-server={self.record['control']}", f"--hostname={HOST}", "--accept-dns=false")
            self.await_reached()

    def account(self):
        """The account that the host is logged in under, as "tailscale switch" names it."""
        lines = self.tailscale("switch", "--list").splitlines()
        return next(line.split()[0] for line in lines if line.rstrip().endswith("*"))

    def log_in(self, hostname):
        """Logs the host in under one more account, which is the current one from then on. Returns it."""
        # Tailscale knows accounts apart by user and server; another name of the server is another one.
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
        """Until the second node reaches the first again. Older versions take a while to agree on new keys."""
        until("the second node to reach the first again", self.reaches_again)

    def reaches_again(self):
        ping = [self.record["nodes"][PEER]["cli"], "ping", "--tsmp", "-c", "1", "--timeout", "2s", HOST]
        return subprocess.run(ping, capture_output=True, timeout=60).returncode == 0

    def commands(self):
        """The command lines of the host's tailscale that run."""
        socket = re.search(r"--socket='([^']*)'", self.command_line())[1]
        lines = [process.command_line(pid) for pid in process.running()]
        return [line for line in lines if f"--socket={socket}" in line and line[0].endswith("/tailscale")]

    def serve_status(self):
        return json.loads(self.tailscale("serve", "status", "--json"))

    def fetch(self, path, port=443, funnel=False, head=False, output=None):
        """What the second node, or a visitor from the internet, gets for a path of the first one.

        A dictionary with status, headers, bytes, sha256 and, where it is short text, body. Raises
        Unreachable where there is no answer.
        """
        options = ["--funnel"] * funnel + ["--head"] * head + (["--output", output] if output else [])
        return json.loads(self.visit("fetch", *options, self.url(path, port)))

    def dial(self, port, data, funnel=False):
        """Sends bytes to a TCP port of the first node, and gives what comes back until it closes.

        Raises Unreachable where nothing comes back.
        """
        answer = self.visit("dial", *["--funnel"] * funnel, f"{self.name}:{port}", data=data)
        if not answer:
            # A relay takes a connection before it knows whether anybody is there.
            raise Unreachable(f"port {port} closed without a word")
        return answer

    def visit(self, command, *arguments, data=b""):
        words = [self.programs / "tailnet", command, "--dir", self.folder, "--from", PEER, *arguments]
        visited = subprocess.run(words, input=data, capture_output=True, timeout=120)
        if visited.returncode:
            raise Unreachable(visited.stderr.decode().strip())
        return visited.stdout


class Unreachable(Exception):
    """A visitor found nobody to talk to."""
