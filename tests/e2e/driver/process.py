# SPDX-License-Identifier: MIT
"""Child processes that do not outlive the driver."""

import subprocess


def start(*command, log=None, **options):
    """Starts a command that is killed when the driver ends, however that ends."""
    output = open(log, "ab") if log else subprocess.DEVNULL
    options = {"stdin": subprocess.DEVNULL, "stdout": output, "stderr": output} | options
    try:
        return subprocess.Popen(["setpriv", "--pdeathsig", "KILL", "--", *map(str, command)], **options)
    finally:
        if log:
            output.close()


def end(child, patience=10):
    """Ends a child politely, and by force where that does not help."""
    if child.poll() is None:
        child.terminate()
    try:
        return child.wait(patience)
    except subprocess.TimeoutExpired:
        child.kill()
        return child.wait()
