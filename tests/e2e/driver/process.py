# SPDX-License-Identifier: MIT
"""Child processes that do not outlive the driver."""

import subprocess
from pathlib import Path


def start(*command, log=None, **options):
    """Starts a command that is killed when the driver ends, however it ends."""
    output = open(log, "ab") if log else subprocess.DEVNULL
    options = {"stdin": subprocess.DEVNULL, "stdout": output, "stderr": output} | options
    try:
        return subprocess.Popen(["setpriv", "--pdeathsig", "KILL", "--", *map(str, command)], **options)
    finally:
        if log:
            output.close()


def end(child, patience=10):
    """Ends a child with SIGTERM, or after `patience` seconds with SIGKILL; returns its exit status."""
    if child.poll() is None:
        child.terminate()
    try:
        return child.wait(patience)
    except subprocess.TimeoutExpired:
        child.kill()
        return child.wait()


def running():
    """The identifiers of all processes."""
    return [int(folder.name) for folder in Path("/proc").glob("[0-9]*")]


def command_line(pid):
    """The arguments of a process; empty if it has ended."""
    try:
        return Path(f"/proc/{pid}/cmdline").read_text(errors="replace").split("\0")
    except OSError:
        return []
