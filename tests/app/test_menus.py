# SPDX-License-Identifier: MIT
"""The menus and the About panel, used from the keyboard."""

import pytest

from driver.waiting import until
from driver.window import TEXT


@pytest.fixture
def child(user):
    child = user.start()
    user.await_keyboard(child)
    return child


def choose(user, menu, item):
    """Chooses an item by its letters."""
    user.open_menu(menu)
    user.key(item)


def open_about(user, child):
    choose(user, "b", "a")
    user.await_keyboard(child, "About Brevane")


def close_about(user, child, key):
    user.key(key)
    until("the panel to close", lambda: not user.windows("About Brevane", child.pid))
    user.await_keyboard(child)


def activate_main(user, child):
    user.desktop.activate(*user.windows("Brevane", child.pid))
    user.await_keyboard(child)


def test_about_twice_is_one_panel(user, child):
    open_about(user, child)
    activate_main(user, child)
    open_about(user, child)
    assert len(user.windows("About Brevane", child.pid)) == 1


# Alt+F4 is the window manager's.
@pytest.mark.parametrize("key", ["ctrl+w", "Escape", pytest.param("alt+F4", marks=pytest.mark.x11)])
def test_a_closed_about_panel_opens_again(user, child, key):
    for _ in range(2):
        open_about(user, child)
        close_about(user, child, key)
    assert child.poll() is None


def test_closing_the_main_window_quits_with_the_about_panel_open(user, child):
    open_about(user, child)
    activate_main(user, child)
    user.key("ctrl+w")
    assert child.wait(30) == 0


def test_the_about_panel_tells_assistive_technology_all_of_it(user, child):
    open_about(user, child)
    panel = user.window(child).application.await_one("About Brevane")
    names = [element.name for element in panel.descendants() if element.name]
    assert names[0] == "Orvale, Small tools, well made"
    assert names[1] == "Brevane"
    assert names[2].startswith("Version ")
    assert panel.find("orvale.example", "push button").enabled


@pytest.mark.x11
def test_minimize_takes_the_window_off_the_screen(user, child):
    choose(user, "w", "m")
    until("the window to go", lambda: not user.windows("Brevane", child.pid))


def test_edit_items_act_on_the_text_field_that_has_the_keyboard(user, child):
    field = user.window(child).field("Port or URL")
    field.accessible.get_component_iface().grab_focus()
    user.desktop.type("3000")
    until("the text", lambda: field.text == "3000")
    choose(user, "e", "a")
    choose(user, "e", "t")
    until("the text to be cut", lambda: field.text == "")
    choose(user, "e", "p")
    choose(user, "e", "p")
    until("the text to be pasted twice", lambda: field.text == "30003000")
    choose(user, "e", "u")
    until("one paste to be undone", lambda: field.text == "3000")


def test_menus_have_the_items_that_were_asked_for(user, child):
    bar = user.window(child).frame.await_one(role="menu bar")
    assert [menu.name for menu in bar.children] == ["Brevane", "Edit", "Window"]


EDIT_KEYS = ("ctrl+z", "ctrl+shift+z", "ctrl+x", "ctrl+c", "ctrl+v", "ctrl+a")


def focused(window):
    return next((element for element in window.frame.descendants() if element.has("focused")), None)


def test_edit_keys_do_no_harm_wherever_the_keyboard_is(user, child):
    window = user.window(child)
    window.field("Port or URL").write("3000")
    visited = []
    # Stops at the first control that has been visited before.
    for _ in range(40):
        user.key(*EDIT_KEYS)
        element = focused(window)
        visited.append((element.role, element.name) if element else None)
        if visited[-1] in visited[:-1]:
            break
        user.key("Tab")
    assert child.poll() is None
    assert window.refresh_button().enabled
    assert len(visited) > 8, visited


def test_edit_keys_do_no_harm_in_the_about_panel_and_over_an_open_menu(user, child):
    open_about(user, child)
    for _ in range(3):
        user.key(*EDIT_KEYS)
        user.key("Tab")
    close_about(user, child, "Escape")
    user.open_menu("b")
    user.key(*EDIT_KEYS)
    user.key("Escape", "Escape")
    assert child.poll() is None
    assert user.window(child).refresh_button().enabled


def test_copy_takes_what_is_selected_in_the_preview(user, child):
    window = user.window(child)
    window.field("Port or URL").write("3000")
    preview = window.frame.await_one("Preview", TEXT)
    preview.accessible.get_component_iface().grab_focus()
    choose(user, "e", "a")
    choose(user, "e", "c")
    until("the copy", lambda: user.desktop.clipboard() == "tailscale serve --bg --yes 3000")
