#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Demonstrates the program on a machine without a screen.

Drives the window through its accessibility interface, on a screen and a tailnet of its own: shares
a folder, fetches one of its files from another device of the tailnet, and saves a screenshot of every
step. Exits with 0 on success; otherwise with 1, and the last line names the step that failed.
"""

import argparse
import shutil
import sys
import tempfile
from pathlib import Path

from driver.application import Application
from driver.tailnet import Tailnet
from driver.x11 import X11Desktop

GREETING = "Hello from a folder shared with Brevane.\n"


class Tour:
    def __init__(self, output):
        self.output = output
        self.step = "preparing"
        self.pictures = 0

    def next(self, step):
        self.step = step
        print(f"{step} ...", flush=True)

    def keep_picture(self, desktop, name):
        self.pictures += 1
        path = self.output / f"{self.pictures}-{name}.png"
        desktop.screenshot(path)
        print(f"    {path}", flush=True)

    def run(self, program, tailscale, tailnet_programs, temporary):
        folder = self.output / "folder"
        folder.mkdir()
        (folder / "hello.txt").write_text(GREETING)
        (folder / "notes.txt").write_text("A second file, so that the listing has two.\n")

        self.next("Starting a tailnet of two devices on this machine")
        with Tailnet(tailnet_programs, tailscale.parent.parent) as tailnet:
            self.next("Starting a screen without a monitor")
            with X11Desktop(temporary) as desktop:
                self.visit(Application(program, desktop), desktop, tailnet, folder)

    def visit(self, application, desktop, tailnet, folder):
        try:
            self.next("Opening the window")
            window = application.start()
            window.await_empty()
            self.keep_picture(desktop, "window")

            self.next("Filling in the form")
            window.fill("Directory", str(folder), path="/tour")
            self.keep_picture(desktop, "form")

            self.next("Starting the share")
            window.start()
            window.await_announcement("Serve started successfully")
            window.await_row("/tour", str(folder))
            self.keep_picture(desktop, "shared")

            url = tailnet.url("/tour/hello.txt")
            self.next(f"Fetching {url} from the other device")
            answer = tailnet.fetch("/tour/hello.txt")
            if (answer["status"], answer.get("body")) != (200, GREETING):
                raise AssertionError(f"the other device received {answer}")

            self.next("Closing the window")
            if status := application.quit():
                raise AssertionError(f"the program ended with status {status}")
        except BaseException:
            self.keep_picture(desktop, "stopped-here")
            raise
        finally:
            application.end()
        print(f"\nShared   {tailnet.url('/tour')}")
        print(f"Received HTTP {answer['status']}, {answer['bytes']} bytes over {answer['proto']} and TLS: {answer['body']}", end="")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", type=Path, required=True, help="the program to show")
    parser.add_argument("--tailscale", type=Path, required=True, help="DIR/host/tailscale, the command that it was built for")
    parser.add_argument("--tailnet-programs", type=Path, required=True, help="folder of tailnet, tailscale and tailscaled")
    parser.add_argument("--output", type=Path, required=True, help="folder for the pictures; emptied first")
    words = parser.parse_args()

    shutil.rmtree(words.output, ignore_errors=True)
    words.output.mkdir(parents=True)
    tour = Tour(words.output.resolve())
    temporary = tempfile.mkdtemp(prefix="brevane-tour-")
    try:
        tour.run(words.program, words.tailscale, words.tailnet_programs, temporary)
    except KeyboardInterrupt:
        return 130
    except Exception as failure:
        print(f"\nThe tour stopped at '{tour.step}': {failure}", file=sys.stderr)
        return 1
    finally:
        shutil.rmtree(temporary, ignore_errors=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
