# SPDX-License-Identifier: MIT
"""A program's controls, seen and operated through AT-SPI."""

import functools

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from .waiting import TimedOut, until  # noqa: E402


def is_ready():
    try:
        return desktop().get_child_count() >= 0
    except GLib.Error:
        return False


def desktop():
    # No main loop runs here that would keep a cache up to date.
    root = Atspi.get_desktop(0)
    root.set_cache_mask(Atspi.Cache.NONE)
    return root


def application(pid):
    """The program with this process identifier; None if the registry does not know it."""
    root = desktop()
    for index in range(root.get_child_count()):
        child = quietly(lambda: root.get_child_at_index(index))
        if child and Element(child).pid == pid:
            child.set_cache_mask(Atspi.Cache.NONE)
            return Element(child)
    return None


def quietly(ask):
    """The result of a call; None if the object no longer exists."""
    try:
        return ask()
    except GLib.Error:
        return None


class Element:
    """One control. It may be destroyed at any time; its properties are then None or empty."""

    def __init__(self, accessible):
        self.accessible = accessible

    def __repr__(self):
        return f"<{self.role} {self.name!r}>"

    @property
    def name(self):
        return quietly(self.accessible.get_name) or ""

    @property
    def role(self):
        name = quietly(self.accessible.get_role_name) or ""
        # Later releases of AT-SPI call it "button".
        return "push button" if name == "button" else name

    @property
    def pid(self):
        """The identifier of its process."""
        return quietly(self.accessible.get_process_id)

    @property
    def text(self):
        """The text that it holds."""
        held = quietly(self.accessible.get_text_iface)
        return quietly(lambda: Atspi.Text.get_text(held, 0, -1)) or "" if held else ""

    def has(self, *states):
        held = quietly(self.accessible.get_state_set)
        return held is not None and all(held.contains(getattr(Atspi.StateType, state.upper())) for state in states)

    @property
    def showing(self):
        return self.has("showing", "visible")

    @property
    def enabled(self):
        return self.has("enabled", "sensitive")

    @property
    def children(self):
        count = quietly(self.accessible.get_child_count) or 0
        found = (quietly(lambda: self.accessible.get_child_at_index(index)) for index in range(count))
        return [Element(child) for child in found if child]

    @property
    def parent(self):
        found = quietly(self.accessible.get_parent)
        return Element(found) if found else None

    def descendants(self):
        """All showing descendants, in visual order."""
        for child in self.children:
            if child.showing:
                yield child
                yield from child.descendants()

    def matches(self, name=None, role=None):
        """Whether it has this name and one of these roles."""
        roles = (role,) if isinstance(role, str) else role
        return (name is None or self.name == name) and (roles is None or self.role in roles)

    def all(self, name=None, role=None):
        """The descendants with this name and one of these roles."""
        return [element for element in self.descendants() if element.matches(name, role)]

    def find(self, name=None, role=None):
        """The first such descendant; None if there is none."""
        return next((element for element in self.descendants() if element.matches(name, role)), None)

    def await_one(self, name=None, role=None):
        """Waits for the first such descendant and returns it."""
        try:
            return until(f"{role or 'something'} called {name!r}", lambda: self.find(name, role))
        except TimedOut as failure:
            raise TimedOut(f"{failure}; there are {list(self.descendants())}") from None

    def act(self, *wanted):
        """Performs the first of these actions that it has, such as "Press"."""
        actions = self.accessible.get_action_iface()
        names = [Atspi.Action.get_action_name(actions, index) for index in range(Atspi.Action.get_n_actions(actions))] if actions else []
        for action in wanted:
            if action in names:
                Atspi.Action.do_action(actions, names.index(action))
                return
        raise AssertionError(f"{self} has no action {' or '.join(wanted)}, only {names}")

    def press(self):
        until(f"{self} to be enabled", lambda: self.enabled)
        self.act("Press", "Toggle", "ShowMenu")

    def switch(self, on):
        """Checks or unchecks a check box or radio button."""
        if self.has("checked") != on:
            self.act("Toggle", "Press")
        until(f"{self} to be {'on' if on else 'off'}", lambda: self.has("checked") == on)

    def write(self, text):
        """Replaces the text that it holds."""
        Atspi.EditableText.set_text_contents(self.accessible.get_editable_text_iface(), text)
        until(f"{self} to hold {text!r}", lambda: self.text == text)


class Announcements:
    """What programs announce: each notification that is shown."""

    def __init__(self):
        self.said = []  # process identifiers and texts
        self.listener = Atspi.EventListener.new(self.hear)
        self.listener.register("object:state-changed:showing")

    def hear(self, event, *_):
        source = Element(event.source)
        if event.detail1 == 1 and source.role == "notification":
            self.said.append((source.pid, source.name))

    def take(self, pid, text):
        """Whether a program has announced this; if so, drops all of its announcements so far."""
        while GLib.MainContext.default().iteration(False):
            pass
        if (pid, text) not in self.said:
            return False
        self.said = [(speaker, said) for speaker, said in self.said if speaker != pid]
        return True


@functools.cache
def announcements():
    """The announcements from the first call on."""
    return Announcements()
