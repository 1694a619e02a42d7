# SPDX-License-Identifier: MIT
"""The window on a Wayland compositor."""

import re
import signal
from contextlib import closing
from pathlib import Path

import pytest

from driver import process
from driver.portal import Portal
from driver.wayland import Compositor
from driver.waiting import until

APPLICATION = "com.brevane.brevane"


@pytest.fixture
def compositor(desktop):
    yield desktop.compositor
    desktop.compositor.tell("output", "HEADLESS-1", "scale", "1")


def test_window_and_desktop_file_have_the_same_name(user, compositor):
    (window,) = compositor.windows(user.start().pid)
    assert (window["name"], window["app_id"]) == ("Brevane", APPLICATION)
    assert window["focused"]
    assert (Path(__file__).parents[2] / f"packaging/linux/{APPLICATION}.desktop").exists()


@pytest.mark.parametrize("scale", ["1", "1.25", "2"])
def test_a_share_is_added_and_the_window_closed_at_every_scale(user, compositor, scale):
    compositor.tell("output", "HEADLESS-1", "scale", scale)
    user.tailscale(f'echo "$*" >>{user.folder}/asked')
    child = user.start()
    window = user.window(child)
    window.field("Port or URL").write("3000")
    window.start()
    until("the command", lambda: "serve --bg --yes 3000" in (user.folder / "asked").read_text().splitlines())
    compositor.tell(f"[app_id={APPLICATION}]", "kill")
    assert child.wait(10) == 0
    assert user.processes() == {}


def test_a_source_type_is_chosen_with_the_keyboard(user, desktop):
    child = user.start()
    user.await_keyboard(child)
    window = user.window(child)
    box = window.frame.await_one(role="combo box")
    desktop.key("shift+Tab", "space")
    until("the list to drop down", lambda: box.find(role="list item"))
    desktop.key("Down", "Down", "Return", "Tab")
    desktop.type("hello")
    field = window.field("Directory Path")
    until("the text", lambda: field.text == "hello")


def shown_at(desktop, x, y):
    """The colour of a point of the screen: red, green and blue."""
    return tuple(desktop.ask("grim", "-t", "ppm", "-g", f"{x},{y} 1x1", "-", text=False)[-3:])


def test_a_dark_window_keeps_the_title_bar_of_the_desktop(user, desktop):
    user.environment["WAYLAND_DEBUG"] = "1"
    user.start()
    with closing(Portal(desktop.environment)) as portal:
        portal.set_scheme(1)
        until("the window to turn dark", lambda: max(shown_at(desktop, 640, 700)) < 64)
    said = (user.folder / "program.log").read_text()
    assert re.search(r"zxdg_toplevel_decoration_v1\S+\.configure\(2\)", said)
    assert not re.search(r"zxdg_toplevel_decoration_v1\S+\.destroy\(", said)


@pytest.mark.parametrize("variable", ["XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"])
def test_a_second_start_hands_its_activation_token_over(user, variable):
    user.environment["WAYLAND_DEBUG"] = "1"
    user.start()
    assert user.launch(environment=user.environment | {variable: "token-1"}).wait(10) == 0
    until("the window to be activated", lambda: '.activate("token-1", ' in (user.folder / "program.log").read_text())


@pytest.fixture
def own_compositor(user):
    """A compositor for this user alone."""
    compositor = Compositor()
    user.environment["WAYLAND_DISPLAY"] = str(compositor.socket)
    yield compositor
    compositor.server.send_signal(signal.SIGCONT)
    process.end(compositor.server)


def start_on(compositor, user):
    child = user.launch()
    until("the window", lambda: compositor.windows(child.pid))
    return child


def test_a_compositor_that_hangs_does_not_hold_quitting_up(user, own_compositor):
    child = start_on(own_compositor, user)
    own_compositor.server.send_signal(signal.SIGSTOP)
    child.send_signal(signal.SIGTERM)
    assert child.wait(3) == 0
    assert user.processes() == {}


def test_a_compositor_that_goes_away_is_a_failure(user, own_compositor):
    child = start_on(own_compositor, user)
    process.end(own_compositor.server)
    # Qt 6.8 ends the process itself, with -1.
    assert child.wait(10) in (1, 255)
    until("nothing to be left", lambda: user.processes() == {})
