# SPDX-License-Identifier: MIT
"""The daemon as the model queries and controls it: a stand-in, or a real tailscaled on loopback."""

import http.client
import json
import os
import re
import socket
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parents[2] / "e2e"))

from driver.tailnet import HOST, Tailnet  # noqa: E402

# Tailscale allows funnels on 443, 8443 and 10000 only; 443 has the web handlers.
FUNNEL_PORTS = ["8443", "10000"]


class StandIn:
    """Also stands in for the shell. Faster than a real daemon."""

    accounts = ["a.ts.net", "b.ts.net"]
    funnel_ports = None

    def __init__(self, command, folder):
        # Command lines contain the path unquoted, and that of the project's folder may have blanks.
        self.command = self.shell = str(folder / "tailscale")
        os.symlink(command, self.command)
        self.file = folder / "daemon.json"
        self.node = self.accounts[0]
        self.write({"node": self.node, "state": "Running", "fails": False, "delay": 0, "configs": {}})

    def write(self, state):
        own = self.file.with_suffix(".json.own")
        own.write_text(json.dumps(state))
        own.rename(self.file)

    def set(self, **values):
        self.write(json.loads(self.file.read_text()) | values)

    def refuse(self, fails):
        """Makes every later change fail, or not."""
        self.set(fails=fails)

    def delay(self, milliseconds):
        """Delays each change before it is made, and again before its command ends."""
        self.set(delay=milliseconds)

    def config(self):
        return json.loads(self.file.read_text())["configs"].get(self.node, {})

    def switch(self, account):
        self.set(node=account)
        self.node = account

    def stop(self):
        self.set(state="Stopped")

    def run(self):
        self.set(state="Running")

    def end(self):
        pass


class Real:
    """The host of a loopback tailnet, with two accounts. Its command refuses or delays changes on request."""

    shell = "/bin/sh"
    funnel_ports = FUNNEL_PORTS

    def __init__(self, programs, folder):
        self.tailnet = Tailnet(programs, folder / "tailnet")
        self.tailnet.__enter__()
        self.ids = {self.tailnet.name: self.tailnet.account()}
        self.servers = {self.tailnet.name: self.tailnet.record["control"]}
        other = self.tailnet.log_in("other")
        name = self.tailnet.await_running()
        self.ids[name] = other
        self.servers[name] = self.tailnet.record["control"].replace("127.0.0.1", "localhost")
        self.accounts = list(self.ids)
        real = self.tailnet.command_line()
        self.socket = re.search(r"--socket='([^']*)'", real)[1]
        self.faults = folder / "faults"
        self.command = str(folder / "tailscale")
        Path(self.command).write_text(f"""#!/bin/sh
case $* in *'status --json') {real} ;; esac
. {self.faults}
[ -z "$delay" ] || {{ sleep $delay; {real.replace("exec ", "")}; status=$?; sleep $delay; exit $status; }}
{real}
""")
        os.chmod(self.command, 0o755)
        self.delay(0)
        self.switch(self.accounts[0])

    def inject(self, fault):
        own = self.faults.with_suffix(".own")
        own.write_text(fault)
        own.rename(self.faults)

    def refuse(self, fails):
        self.inject("echo error: refused >&2; exit 1" if fails else "delay=")

    def delay(self, milliseconds):
        self.inject(f"delay={milliseconds / 1000 if milliseconds else ''}")

    def config(self):
        daemon = http.client.HTTPConnection("local-tailscaled.sock")
        daemon.sock = socket.socket(socket.AF_UNIX)
        daemon.sock.connect(self.socket)
        daemon.request("GET", "/localapi/v0/serve-config")
        answer = daemon.getresponse().read()
        daemon.close()
        return json.loads(answer) or {}

    def switch(self, account):
        self.tailnet.switch(self.ids[account])
        self.node = account

    def stop(self):
        self.tailnet.tailscale("down")

    def run(self):
        host = HOST if self.node == self.tailnet.name else "other"
        self.tailnet.tailscale("up", f"--login-server={self.servers[self.node]}", f"--hostname={host}", "--accept-dns=false")
        self.tailnet.await_running()

    def end(self):
        self.tailnet.__exit__()
