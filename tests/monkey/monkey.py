# SPDX-License-Identifier: MIT
"""Does random things to the running program, for a time, and tells what broke it."""

import argparse
import collections
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import time
from contextlib import suppress
from pathlib import Path

TESTS = Path(__file__).parents[1]
sys.path[:0] = [str(TESTS / "app"), str(TESTS / "e2e")]

from conftest import User  # noqa: E402
from driver import process  # noqa: E402
from driver.portal import Portal  # noqa: E402
from driver.x11 import X11Desktop  # noqa: E402

from actions import Actions  # noqa: E402
from screen import Screen  # noqa: E402

# The event loop has hung if it does not answer for this long, under a sanitizer and on a busy machine.
PATIENCE = 60

# Keys of the window manager would take the windows away.
WINDOW_MANAGER = """<?xml version="1.0"?><openbox_config xmlns="http://openbox.org/3.4/rc">
<desktops><number>1</number></desktops><keyboard><keybind key="A-F4"><action name="Close"/></keybind></keyboard>
<mouse><context name="Client"><mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind></context></mouse>
</openbox_config>"""

SCRIPT = """
seconds=$(cat {folder}/seconds)
[ "$seconds" = 0 ] || sleep "$seconds"
case "$*" in
"status --json") cat {folder}/status.json ;;
"serve status --json") cat {folder}/serve.json ;;
*) cat {folder}/output; exit "$(cat {folder}/exit-status)" ;;
esac"""


class Finding(Exception):
    """Something that must never happen."""


class Person(User):
    def prepare(self):
        self.environment |= {
            "HOME": str(self.folder),
            "PATH": f"{self.folder}/bin:{self.environment['PATH']}",
            "QT_MESSAGE_PATTERN": "qt-%{type} %{category}: %{message}",
            "ASAN_OPTIONS": "handle_abort=1:abort_on_error=0:exitcode=99:" + self.environment.get("ASAN_OPTIONS", ""),
            "LSAN_OPTIONS": f"suppressions={Path(__file__).with_name('leaks-of-libraries.supp')}:print_suppressions=0",
            "UBSAN_OPTIONS": "print_stacktrace=1:" + self.environment.get("UBSAN_OPTIONS", ""),
        }
        # The link in the About panel opens no browser.
        (self.folder / "bin").mkdir()
        for name in ("xdg-open", "x-www-browser", "firefox", "google-chrome", "chromium", "opera", "mozilla"):
            (self.folder / "bin" / name).symlink_to("/bin/true")
        (self.folder / "files" / "site").mkdir(parents=True)
        for name in ("report.pdf", "my report.pdf", "Grüße.txt"):
            (self.folder / "files" / name).write_text(name)
        for name, content in (("output", b""), ("exit-status", b"0"), ("seconds", b"0")):
            self.lay_down(name, content)
        self.tailscale(SCRIPT.format(folder=self.folder))

    def lay_down(self, name, content):
        """Replaces a file in one step."""
        (self.folder / f"{name}.new").write_bytes(content)
        (self.folder / f"{name}.new").replace(self.folder / name)


class Monkey:
    def __init__(self, program, seed, folder):
        self.seed = seed
        self.folder = folder
        self.warnings = collections.Counter()
        self.starts = 0
        self.read = 0
        self.slowest = 0
        desktop_folder = folder / "desktop"
        desktop_folder.mkdir(parents=True)
        self.desktop = X11Desktop(desktop_folder)
        (desktop_folder / "config" / "openbox").mkdir()
        (desktop_folder / "config" / "openbox" / "rc.xml").write_text(WINDOW_MANAGER)
        self.desktop.__enter__()
        (folder / "user").mkdir()
        self.user = Person(program, self.desktop, folder / "user")
        self.user.prepare()
        self.log = self.user.folder / "program.log"
        self.screen = Screen(self.desktop.environment)
        self.screen.serve_settings()
        self.actions = Actions(self.screen, self.user, Portal(self.desktop.environment), self.note)
        self.reader = process.start(sys.executable, "-B", "-W", "ignore", Path(__file__).with_name("reader.py"), env=self.desktop.environment, log=folder / "reader.log")

    def close(self):
        process.end(self.reader)
        self.user.end()
        self.screen.close()
        self.desktop.__exit__()

    def start(self):
        self.child = self.user.launch()
        self.actions.pid = self.child.pid
        self.starts += 1
        self.await_answer("start")

    def await_answer(self, action):
        """Returns once the program has seen all that was done to it: True, or False where that has ended it in order."""
        began = time.monotonic()
        while self.child.poll() is None:
            windows = self.screen.windows(self.child.pid)
            if windows and self.screen.ping(windows[0], 2):
                self.slowest = max(self.slowest, time.monotonic() - began)
                return True
            if time.monotonic() - began > PATIENCE:
                self.picture_screen()
                self.child.send_signal(signal.SIGABRT)
                with suppress(subprocess.TimeoutExpired):
                    self.child.wait(PATIENCE)
                what = "no answer" if windows else "no window"
                raise Finding(f"{what} for {PATIENCE} s after {action}")
            if not windows:
                time.sleep(0.05)
        if self.child.returncode != 0:
            raise Finding(f"ended with status {self.child.returncode} after {action}")
        return False

    def picture_screen(self):
        """Keeps what is on the screen while the program is still there."""
        self.desktop.screenshot(self.folder / "finding.png")
        windows = subprocess.run(["xwininfo", "-root", "-tree"], env=self.desktop.environment, capture_output=True).stdout
        (self.folder / "windows.txt").write_bytes(windows)

    def read_log(self):
        lines = self.read_lines()
        for line in lines:
            if re.search(r"ERROR: |runtime error:|^qt-critical|^qt-fatal|SUMMARY: ", line):
                raise Finding(line)
            if line.strip():
                self.warnings[re.sub(r"\d+|0x[0-9a-f]+", "N", line)[:160]] += 1

    def read_lines(self):
        with open(self.log, "rb") as log:
            log.seek(self.read)
            content = log.read()
        self.read += len(content)
        return content.decode(errors="replace").splitlines()

    def run(self, seconds):
        deadline = time.monotonic() + seconds
        done = collections.Counter()
        index = 0
        self.start()
        while time.monotonic() < deadline:
            # Of its own for each action, so that what one finds on the screen does not change the next.
            rng = random.Random(f"{self.seed}/{index}")
            action = self.actions.choose(rng)
            self.note(f"{index} {action.__name__}")
            self.screen.front(self.child.pid)
            action(rng)
            done[action.__name__] += 1
            answered = self.await_answer(f"action {index}, {action.__name__}")
            self.read_log()
            self.desktop.assert_whole()
            if self.reader.poll() is not None:
                raise RuntimeError(f"the reader ended; see {self.folder}/reader.log")
            if not answered:
                self.start()
            index += 1
        self.quit()
        return done

    def quit(self):
        self.child.terminate()
        began = time.monotonic()
        while self.child.poll() is None:
            if time.monotonic() - began > PATIENCE:
                raise Finding("did not quit")
            time.sleep(0.05)
        self.read_log()
        if self.child.returncode != 0:
            raise Finding(f"quit with status {self.child.returncode}")

    def note(self, line):
        with open(self.folder / "actions.log", "a") as log:
            log.write(line + "\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True, help="built for the tailscale of tests/app, with sanitizers")
    parser.add_argument("--folder", required=True, type=Path, help="emptied first; its logs stay after a finding")
    parser.add_argument("--seconds", type=float, required=True)
    parser.add_argument("--seed", type=int, required=True)
    options = parser.parse_args()
    shutil.rmtree(options.folder, ignore_errors=True)
    options.folder.mkdir(parents=True)
    (options.folder / "actions.log").touch()
    print(f"seed {options.seed}", flush=True)
    monkey = Monkey(options.program, options.seed, options.folder.resolve())
    try:
        done = monkey.run(options.seconds)
    except Finding as finding:
        print(f"FOUND with seed {options.seed}: {finding}")
        for name in ("actions.log", "user/program.log"):
            print(f"--- the end of {options.folder / name}")
            print("\n".join((options.folder / name).read_text(errors="replace").splitlines()[-60:]))
        return 1
    finally:
        monkey.close()
    counts = ", ".join(f"{name} {count}" for name, count in done.most_common())
    print(f"{sum(done.values())} actions, {monkey.starts} starts, slowest answer {monkey.slowest:.1f} s; {counts}")
    print(f"the reader {(options.folder / 'reader.log').read_text().strip()}")
    for line, count in monkey.warnings.most_common(20):
        print(f"warned {count} times: {line}")
    print("nothing found")
    return 0


if __name__ == "__main__":
    os.umask(0o077)
    sys.exit(main())
