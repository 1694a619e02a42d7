# SPDX-License-Identifier: MIT
"""How the program quits, whatever it is doing at the time."""

import json
import signal
import time

import pytest

from conftest import connected
from driver import process
from driver.waiting import until
from held import hold_main_thread

# Quitting may take two seconds; the rest is for a machine that runs other tests meanwhile.
PATIENCE = 2 + 1

STUBBORN = "trap '' TERM; sleep 1000 & sleep 1001 & while :; do wait; done"


def assert_quits(user, child, how):
    """The program exits in time, without a message and without leaving a process."""
    how()
    status = child.wait(PATIENCE)
    assert (status, (user.folder / "program.log").read_text()) == (0, "")
    assert user.processes() == {}


@pytest.mark.parametrize("number", [signal.SIGTERM, signal.SIGINT, signal.SIGHUP])
def test_signals_are_a_quit(user, number):
    child = user.start()
    assert_quits(user, child, lambda: child.send_signal(number))


def test_a_signal_that_was_ignored_from_the_start_stays_ignored(user):
    child = process.start("sh", "-c", "trap '' HUP; exec \"$0\"", user.program, env=user.environment)
    until("the window", lambda: user.windows("Brevane", child.pid))
    child.send_signal(signal.SIGHUP)
    assert user.launch().wait(30) == 0
    assert child.poll() is None


# Alt+F4 is the window manager's.
KEYS = ["ctrl+q", "ctrl+w", pytest.param("alt+F4", marks=pytest.mark.x11)]


@pytest.mark.parametrize("keys", KEYS)
def test_keys_quit(user, keys):
    child = user.start()
    user.await_keyboard(child)
    assert_quits(user, child, lambda: user.key(keys))


def test_close_in_the_menu_quits(user):
    child = user.start()
    user.await_keyboard(child)
    user.open_menu("w")
    user.window(child).frame.await_one("Close", "menu item")
    assert_quits(user, child, lambda: user.key("c"))


@pytest.mark.parametrize("keys", KEYS)
def test_keys_quit_while_a_menu_is_open(user, keys):
    child = user.start()
    user.await_keyboard(child)
    user.open_menu("b")
    user.window(child).frame.await_one("About Brevane", "menu item")
    # The first key may do no more than close the menu.
    assert_quits(user, child, lambda: until("the end", lambda: user.key(keys) or child.poll() is not None, patience=PATIENCE))


def test_a_hanging_command_that_ignores_sigterm_ends_with_the_program(user):
    user.tailscale(STUBBORN)
    child = user.start()
    until("the command to run", lambda: any("1001" in line for line in user.processes().values()))
    assert_quits(user, child, lambda: child.send_signal(signal.SIGTERM))


def test_a_signal_repeated_is_one_quit(user):
    user.tailscale(STUBBORN)
    child = user.start()
    until("the command to run", lambda: any("1001" in line for line in user.processes().values()))

    def insist():
        for _ in range(20):
            child.send_signal(signal.SIGTERM)
            time.sleep(0.01)

    assert_quits(user, child, insist)


def test_a_signal_while_it_starts_leaves_nothing_behind(user):
    user.tailscale(STUBBORN)
    for delay in range(0, 100, 10):
        child = user.launch()
        time.sleep(delay / 1000)
        child.send_signal(signal.SIGTERM)
        assert child.wait(PATIENCE) in (0, -signal.SIGTERM), (user.folder / "program.log").read_text()
        assert user.processes() == {}


def test_a_share_in_the_foreground_ends_with_the_program(user):
    user.tailscale(f'[ "$2" = status -o "$1" = status ] || {{ {STUBBORN}; }}')
    child = user.start()
    window = user.window(child)
    window.fill("Port / App URL", "3000", background=False)
    window.start()
    until("the command to run", lambda: any("1001" in line for line in user.processes().values()))
    assert_quits(user, child, lambda: child.send_signal(signal.SIGTERM))


def quit_while_making(user, kind, source):
    """Quits while a background share is being made, and returns the arguments of the command that made it."""
    user.tailscale(f'[ "$2" = status -o "$1" = status ] || {{ touch {user.folder}/begun; sleep 0.3; echo "$*" >{user.folder}/made; }}')
    child = user.start()
    window = user.window(child)
    window.fill(kind, source)
    window.start()
    until("the command to run", (user.folder / "begun").exists)
    assert_quits(user, child, lambda: child.send_signal(signal.SIGTERM))
    return (user.folder / "made").read_text().split()


def test_a_background_share_in_the_making_may_end_by_itself(user):
    assert quit_while_making(user, "Port / App URL", "3000")[-1] == "3000"


def test_a_folder_whose_background_share_is_in_the_making_is_recorded(user):
    port = quit_while_making(user, "Directory", str(user.folder))[-1]
    stored = json.loads((user.folder / "config" / "brevane" / "preferences.json").read_text())
    assert stored["TailscaleManagedServers"] == {port: {"path": str(user.folder), "type": "directory"}}


def test_a_main_thread_that_waits_for_ever_does_not_hold_it_up(user):
    user.tailscale(STUBBORN)
    child = user.start()
    until("the command to run", lambda: any("1001" in line for line in user.processes().values()))
    hold_main_thread(child.pid)
    child.send_signal(signal.SIGTERM)
    assert child.wait(PATIENCE) == 0
    until("nothing to be left", lambda: user.processes() == {})


@pytest.fixture
def display(desktop, user, monkeypatch):
    """An X server for this user alone."""
    user.environment["DISPLAY"] = desktop.start_server()
    monkeypatch.setitem(desktop.environment, "DISPLAY", user.environment["DISPLAY"])
    server = desktop.children.pop()
    yield server
    server.send_signal(signal.SIGCONT)
    process.end(server)


@pytest.mark.x11
def test_a_display_that_hangs_does_not_hold_it_up(user, display):
    child = user.start()
    display.send_signal(signal.SIGSTOP)
    assert_quits(user, child, lambda: child.send_signal(signal.SIGTERM))


@pytest.mark.x11
def test_a_display_that_goes_away_leaves_nothing_behind(user, display):
    user.tailscale(STUBBORN)
    child = user.launch()
    until("the command to run", lambda: any("1001" in line for line in user.processes().values()))
    process.end(display)
    assert child.wait(PATIENCE) == 1
    assert user.processes() == {}


@pytest.mark.x11
def test_a_display_that_goes_away_while_visitors_are_served_is_an_end_with_status_1(user, served, display):
    child = user.start()
    visitors = [connected(served) for _ in range(20)]
    for visitor in visitors:
        visitor.sendall(b"GET /large HTTP/1.1\r\nHost: host\r\n\r\n")
        assert visitor.recv(4) == b"HTTP"
    process.end(display)
    assert child.wait(30) == 1
    for visitor in visitors:
        visitor.close()


def test_downloads_in_flight_do_not_hold_it_up(user, served):
    child = user.start()
    visitors = [connected(served) for _ in range(20)]
    for visitor in visitors:
        visitor.sendall(b"GET /large HTTP/1.1\r\nHost: host\r\n\r\n")
        assert visitor.recv(4) == b"HTTP"
    assert_quits(user, child, lambda: child.send_signal(signal.SIGTERM))
    for visitor in visitors:
        visitor.close()
