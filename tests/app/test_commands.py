# SPDX-License-Identifier: MIT
"""What the program passes on to its commands, and how they end with it."""

import fcntl
import os
import resource
import signal
import termios

import pytest

from driver import process
from driver.waiting import until


def login_file(user, script):
    """Makes every login shell of the program run this zsh script."""
    folder = user.folder / "login"
    folder.mkdir()
    (folder / ".zprofile").write_text(script + "\n")
    user.environment["ZDOTDIR"] = str(folder)


def asked(user):
    """The commands so far, one per line."""
    log = user.folder / "asked"
    return log.read_text().splitlines() if log.exists() else []


def test_a_login_file_that_sets_the_terminal_stops_no_command(user):
    login_file(user, "stty -echo </dev/tty")
    user.tailscale(f'echo "$*" >>{user.folder}/asked')
    terminal, screen = os.openpty()
    try:
        process.start(
            user.program,
            env=user.environment,
            stdin=screen,
            start_new_session=True,
            preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0),
        )
        until("both questions", lambda: asked(user) == ["status --json", "serve status --json"])
    finally:
        os.close(terminal)
        os.close(screen)


# If a signal is trapped, zsh forks its last command instead of replacing itself with it.
@pytest.mark.parametrize("login", ["true", "trap true USR1"])
def test_a_share_in_the_foreground_ends_with_a_killed_program(user, login):
    login_file(user, login)
    user.tailscale('[ "$2" = status -o "$1" = status ] || { trap "" TERM HUP; sleep 1001; }')
    child = user.start()
    window = user.window(child)
    window.fill("Port / App URL", "3000", background=False)
    window.start()
    until("the command to run", lambda: any("1001" in line for line in user.processes().values()))
    child.send_signal(signal.SIGKILL)
    child.wait(30)
    until("nothing to be left", lambda: user.processes() == {})


def test_the_program_may_open_all_descriptors_and_its_commands_what_they_could(user):
    user.tailscale(f'echo "$(ulimit -Sn) $(ulimit -Hn)" >>{user.folder}/asked')
    child = process.start(user.program, env=user.environment, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (512, 4096)))
    until("both questions", lambda: asked(user) == ["512 4096"] * 2)
    assert resource.prlimit(child.pid, resource.RLIMIT_NOFILE) == (4096, 4096)
