# SPDX-License-Identifier: MIT
"""Disks that fail, visible to one program only. Needs root."""

import os
import subprocess
from pathlib import Path

from . import process
from .waiting import until


class Mounts:
    """A mount namespace: only processes inside see its mounts, and it ends with the last of them."""

    def __enter__(self):
        self.holder = process.start("unshare", "--mount", "--propagation", "private", "sleep", "infinity")
        until("the namespace", self.exists)
        return self

    def exists(self):
        assert self.holder.poll() is None, "this system allows no private mounts"
        return process.command_line(self.holder.pid)[:1] == ["sleep"]

    def __exit__(self, *_):
        process.end(self.holder)

    def inside(self, *command):
        """The command line that runs a command inside."""
        return ["nsenter", f"--mount=/proc/{self.holder.pid}/ns/mnt", "--", *command]

    def seen(self, path):
        """A path inside, as seen from outside."""
        return Path(f"/proc/{self.holder.pid}/root{path}")

    def mount(self, *words):
        subprocess.run(self.inside("mount", *words), check=True)


class FullDisk:
    """A file system in memory that can be filled."""

    reason = "No space left on device"

    def __init__(self, mounts, folder):
        mounts.mount("-t", "tmpfs", "-o", "size=64k,mode=700", "tmpfs", folder)
        self.ballast = mounts.seen(folder) / "ballast"

    def fail(self):
        with open(self.ballast, "wb", buffering=0) as ballast:
            try:
                while True:
                    ballast.write(bytes(4096))
            except OSError as full:
                assert os.strerror(full.errno) == self.reason

    def recover(self):
        self.ballast.unlink()


class ReadOnlyDisk:
    """A file system in memory that becomes read-only, as after a disk error."""

    reason = "Read-only file system"

    def __init__(self, mounts, folder):
        mounts.mount("-t", "tmpfs", "-o", "mode=700", "tmpfs", folder)
        self.remount = lambda how: mounts.mount("-o", f"remount,{how}", folder)

    def fail(self):
        self.remount("ro")

    def recover(self):
        self.remount("rw")


class HungDisk:
    """A file system on a folder that answers no request, like a network file system whose server is gone."""

    def __init__(self, program, mounts, folder):
        # It runs until its standard input closes, at the latest when this process ends.
        self.child = process.start(*mounts.inside(program, folder), stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        assert self.child.stdout.readline() == "mounted\n"

    def await_question(self):
        assert self.child.stdout.readline() == "asked\n"

    def end(self):
        """Unmounts it; pending calls return an error."""
        self.child.stdin.close()
        self.child.wait(10)
