# SPDX-License-Identifier: MIT
"""How the program starts, alone and while others run."""

import re
import signal
import subprocess
from pathlib import Path

import pytest

from driver import process
from driver.waiting import until

DESKTOP_FILE = Path(__file__).parents[2] / "packaging" / "linux" / "com.brevane.brevane.desktop"


def run(program, *arguments):
    """Runs the program without a screen."""
    return subprocess.run([program, *arguments], env={}, capture_output=True, text=True, timeout=60)


@pytest.fixture
def program(pytestconfig):
    return pytestconfig.getoption("--program")


def test_version_and_help_need_no_screen(program):
    version = run(program, "--version")
    assert (version.returncode, version.stderr) == (0, "")
    assert re.fullmatch(r"brevane \d+\.\d+\.\d+\n", version.stdout)
    shown = run(program, "--help")
    assert (shown.returncode, shown.stderr) == (0, "")
    assert shown.stdout.startswith("Usage: brevane")


def test_a_wrong_option_is_answered_with_usage_and_status_2(program):
    refused = run(program, "--wrong")
    assert (refused.returncode, refused.stdout) == (2, "")
    assert "'--wrong'" in refused.stderr and "Usage: brevane" in refused.stderr


def properties(user, window):
    return user.ask("xprop", "-id", window)


@pytest.mark.x11
def test_the_window_is_centred_with_its_title_and_sizes(user, desktop):
    (window,) = user.windows("Brevane", user.start().pid)
    shown = properties(user, window)
    assert re.search(r"minimum size: 640 by 500", shown)
    place = dict(re.findall(r"^ +(?:Absolute upper-left )?(X|Y|Width|Height): +(\d+)$", user.ask("xwininfo", "-id", window), re.M))
    assert (place["Width"], place["Height"]) == ("800", "640")
    screen_width, screen_height = map(int, user.xdotool("getdisplaygeometry").split())
    # The window manager may centre the window with its frame or without.
    assert abs(int(place["X"]) + 400 - screen_width / 2) <= 30
    assert abs(int(place["Y"]) + 320 - screen_height / 2) <= 30


@pytest.mark.x11
def test_desktop_file_and_window_class_agree_and_the_window_has_an_icon(user):
    (window,) = user.windows("Brevane", user.start().pid)
    shown = properties(user, window)
    entry = dict(line.split("=", 1) for line in DESKTOP_FILE.read_text().splitlines() if "=" in line)
    assert re.search(r'WM_CLASS\(STRING\) = "\S+", "(\S+)"', shown)[1] == entry["StartupWMClass"]
    assert entry["Icon"] == DESKTOP_FILE.stem
    assert "Icon (64 x 64)" in shown


def test_the_source_can_be_typed_at_once(user):
    child = user.start()
    user.await_keyboard(child)
    user.desktop.type("3000")
    field = user.window(child).field("Port or URL")
    until("the text", lambda: field.text == "3000")


def test_one_refresh_is_asked_for_at_the_start(user):
    user.tailscale(f'echo "$*" >>{user.folder}/asked')
    user.start()
    asked = user.folder / "asked"
    until("both questions", lambda: asked.exists() and len(asked.read_text().splitlines()) >= 2)
    assert asked.read_text().splitlines() == ["status --json", "serve status --json"]


def test_without_tailscale_the_window_opens_all_the_same(user):
    (user.folder / "tailscale").unlink()
    user.start()


@pytest.mark.x11
def test_a_second_start_raises_the_first_ones_window_and_ends(user, desktop):
    first = user.start()
    other = desktop.start("xmessage", "-title", "Other", "in front")
    until("the other window in front", lambda: user.active_title() == "Other")
    assert user.launch().wait(30) == 0
    until("the first one's window in front", lambda: user.active_title() == "Brevane")
    assert first.poll() is None
    process.end(other)


@pytest.mark.x11
def test_a_second_start_brings_a_minimized_window_back(user):
    first = user.start()
    user.xdotool("windowminimize", *user.windows("Brevane", first.pid))
    until("the window to go", lambda: not user.windows("Brevane", first.pid))
    assert user.launch().wait(30) == 0
    until("the window to come back", lambda: user.windows("Brevane", first.pid))


def test_a_second_start_says_that_there_is_a_window(user):
    """Not every compositor lets the window come to the front for a start from a terminal."""
    first = user.start()
    assert user.launch().wait(30) == 0
    assert (user.folder / "program.log").read_text() == "brevane: it is running already, in another window\n"
    assert process.end(first) == 0


def test_of_several_that_start_at_once_one_stays(user):
    for _ in range(5):
        children = [user.launch() for _ in range(4)]
        until("all but one to end", lambda: sum(child.poll() is None for child in children) == 1)
        (left,) = [child for child in children if child.poll() is None]
        assert [child.returncode for child in children if child is not left] == [0, 0, 0]
        until("its window", lambda: user.windows("Brevane", left.pid))
        assert process.end(left) == 0


def test_what_a_crashed_one_left_behind_keeps_nobody_out(user):
    for _ in range(3):
        child = user.start()
        child.send_signal(signal.SIGKILL)
        child.wait(30)
    assert process.end(user.start()) == 0


def test_one_that_starts_while_the_first_ends_takes_its_place(user):
    user.tailscale("trap '' TERM; while :; do sleep 1; done")
    first = user.start()
    until("the command to run", lambda: any("sleep" in line for line in user.processes().values()))
    first.send_signal(signal.SIGTERM)
    second = user.start()
    assert first.wait(30) == 0
    assert second.poll() is None


def test_a_second_start_that_gets_no_answer_says_so(user):
    first = user.start()
    first.send_signal(signal.SIGSTOP)
    second = user.launch()
    assert second.wait(30) == 1
    assert (user.folder / "program.log").read_text() == "brevane: it is running already, but does not answer\n"
    first.send_signal(signal.SIGCONT)
    assert process.end(first) == 0


@pytest.mark.parametrize("runtime", [True, False])
def test_a_second_start_raises_the_first_ones_window_with_and_without_a_runtime_folder(user, runtime):
    if not runtime:
        del user.environment["XDG_RUNTIME_DIR"]
    first = user.start()
    assert user.launch().wait(30) == 0
    assert process.end(first) == 0


@pytest.mark.parametrize("replaced", [False, True])
def test_there_is_one_also_where_the_preferences_folder_went_while_it_ran(user, replaced):
    folder = user.folder / "config" / "brevane"
    folder.mkdir(parents=True)
    first = user.start()
    folder.rename(user.folder / "config" / "gone")
    if replaced:
        folder.mkdir()
    assert user.launch().wait(30) == 0
    assert first.poll() is None


def test_another_preferences_folder_is_another_instance(user):
    first = user.start()
    elsewhere = user.environment | {"XDG_CONFIG_HOME": str(user.folder / "elsewhere")}
    second = user.launch(environment=elsewhere)
    until("its window", lambda: user.windows("Brevane", second.pid))
    assert first.poll() is None


def test_nothing_is_written_to_the_preferences_folder(user):
    child = user.start()
    assert process.end(child) == 0
    assert list((user.folder / "config").rglob("*")) == []
