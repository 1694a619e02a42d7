# SPDX-License-Identifier: MIT
"""What the monkey does. What an action is to be depends on the random numbers that it is given alone, never on
what the window shows; where it lands is said in fractions of what is there."""

import os
import signal
import subprocess
import time
from contextlib import suppress

import documents

KEYS = (
    "Tab", "shift+Tab", "Up", "Down", "Left", "Right", "Home", "End", "Prior", "Next", "Return", "KP_Enter", "space", "Escape",
    "BackSpace", "Delete", "F10", "F5", "Menu", "shift+F10", "alt+b", "alt+e", "alt+w", "alt+Down", "a", "c", "e", "m", "p", "s", "t", "x", "0", "slash",
    "ctrl+z", "ctrl+shift+z", "ctrl+x", "ctrl+c", "ctrl+v", "ctrl+a", "ctrl+r", "ctrl+Home", "ctrl+End", "ctrl+Left", "ctrl+Right",
    "ctrl+shift+Left", "ctrl+shift+Right", "shift+Home", "shift+End", "shift+Up", "shift+Down", "ctrl+Tab", "ctrl+shift+Tab",
    "shift+Insert", "ctrl+Insert", "shift+Delete", "ctrl+BackSpace", "ctrl+Delete", "ctrl+k", "ctrl+u", "ctrl+space", "F2", "F4",
)  # fmt: skip
CLOSING_KEYS = ("ctrl+w", "ctrl+m", "ctrl+q", "alt+F4")
EDIT_KEYS = ("ctrl+z", "ctrl+shift+z", "ctrl+x", "ctrl+c", "ctrl+v", "ctrl+a")

# Sources end up in a command line of a real shell: nothing that starts a command or opens a file is among these.
LETTERS = ("x", "y", "z", "0", "3", "8", "slash", "colon", "period", "minus", "underscore", "space", "percent", "apostrophe", "quotedbl")
CLIPBOARDS = (
    "3000", "8443", "Grüße 🎈", "שלום עולם", "one\ntwo\n", "\u202eleft", "e\u0301\u0302" * 50, "\t", " ", "x" * 100_000, "word " * 8_000, "it's",
    "http://127.0.0.1:3000/api", "\u2028\u2029\ufeff\ufffc", "👩‍👩‍👧‍👦" * 300,
)  # fmt: skip
OUTPUTS = ("", "", "Available on your tailnet:\nhttps://host", "error: " + "x" * 30_000, "listener already exists\n" * 2_000, "Grüße 🎈\x1b[31m")
CONTROLS = ("Reset Shares", "Stop share", "Browse…", "Copy URL", "Refresh (Ctrl+R)", "Clear", "Start Serve", "Start Funnel", "Serve", "Funnel", "Cancel", "Reset", "Stop")


class Actions:
    """One desktop with one user, whose program may be another one after each action."""

    def __init__(self, screen, user, portal, note):
        self.note = note
        self.screen = screen
        self.user = user
        self.portal = portal
        self.pid = None
        self.weighted = (
            (30, self.keys), (4, self.edit_keys_on_each_control), (8, self.type), (4, self.paste), (15, self.clicks), (6, self.drag), (6, self.scroll),
            (3, self.drop), (5, self.resize), (2, self.reshape), (3, self.theme), (2, self.font), (10, self.refresh), (3, self.outcome), (3, self.about),
            (8, self.press_control), (6, self.accessible_action), (0.5, self.closing_key), (0.3, self.terminate),
        )  # fmt: skip

    def choose(self, rng):
        return rng.choices([action for _, action in self.weighted], [weight for weight, _ in self.weighted])[0]

    # Keyboard

    def press(self, *keys):
        self.note("  " + " ".join(keys))
        for key in keys:
            self.screen.key(key)

    def keys(self, rng):
        self.press(*rng.choices(KEYS, k=rng.randint(1, 12)))

    def edit_keys_on_each_control(self, rng):
        for _ in range(rng.randint(1, 10)):
            self.press(*rng.sample(EDIT_KEYS, len(EDIT_KEYS)), rng.choice(("Tab", "Tab", "shift+Tab")))

    def closing_key(self, rng):
        self.press(rng.choice(CLOSING_KEYS))

    def type(self, rng):
        self.press(*rng.choices(LETTERS, k=rng.randint(1, 20)))

    def paste(self, rng):
        text = rng.choice(CLIPBOARDS).encode()
        subprocess.run(["xclip", "-in", "-selection", "clipboard"], input=text, env=self.user.environment, timeout=20)
        self.press("ctrl+v")

    def about(self, rng):
        self.press("alt+b", "a")

    # Pointer

    def spot(self, rng):
        """A place inside the window in front, of which a part may be off the screen."""
        across, down = rng.random(), rng.random()
        window = self.screen.front(self.pid)
        left, top, width, height = self.screen.place(window) if window else (0, 0, 1, 1)
        return max(0, left + across * (width - 1)), max(0, top + down * (height - 1))

    def clicks(self, rng):
        for _ in range(rng.randint(1, 4)):
            number, times = rng.choices((1, 2, 3), (10, 1, 2))[0], rng.choices((1, 2, 3), (10, 2, 1))[0]
            spot = self.spot(rng)
            self.note(f"  {times} times button {number} at {spot}")
            self.screen.move(*spot)
            for _ in range(times):
                self.screen.click(number)

    def drag(self, rng):
        number = rng.choices((1, 2, 3), (10, 1, 1))[0]
        self.screen.move(*self.spot(rng))
        self.screen.button(number, True)
        for _ in range(rng.randint(1, 6)):
            self.screen.move(*self.spot(rng))
        if rng.random() < 0.3:
            self.press(rng.choice(KEYS))
        self.screen.button(number, False)

    def scroll(self, rng):
        self.screen.move(*self.spot(rng))
        for number in rng.choices((4, 5, 6, 7), k=rng.randint(1, 15)):
            self.screen.click(number)

    def drop(self, rng):
        left, top = self.spot(rng)
        names = rng.choices(("report.pdf", "my report.pdf", "site", "missing", "Grüße.txt"), k=rng.choices((1, 2), (5, 1))[0])
        let_go, address = rng.random() < 0.8, rng.choices(("file://{}", "https://example.com/{}", "{}"), (10, 1, 1))[0]
        window = self.screen.front(self.pid)
        if window:
            self.screen.drop(window, left, top, [address.format(self.user.folder / "files" / name) for name in names], let_go)

    # Window

    def resize(self, rng):
        place = rng.randrange(-200, 600), rng.randrange(-100, 400), rng.randrange(1, 1400), rng.randrange(1, 1000)
        window = self.screen.front(self.pid)
        self.note(f"  {place}")
        if window:
            self.screen.resize(window, *place)

    def reshape(self, rng):
        change = rng.choice(("MAXIMIZED_VERT", "MAXIMIZED_HORZ", "FULLSCREEN", "SHADED", "iconic"))
        window = self.screen.front(self.pid)
        self.note(f"  {change}")
        if window and change == "iconic":
            self.screen.tell(window, "WM_CHANGE_STATE", 3)
        elif window:
            self.screen.state(window, change)

    def theme(self, rng):
        for _ in range(rng.randint(1, 3)):
            self.portal.set_scheme(rng.randrange(3))

    def font(self, rng):
        self.screen.set_dots_per_inch(rng.choice((48, 72, 96, 96, 120, 144, 192, 288)))

    # Tailscale

    def refresh(self, rng):
        self.user.lay_down("status.json", documents.text(rng, documents.status(rng)))
        self.user.lay_down("serve.json", documents.text(rng, documents.serve(rng)))
        for _ in range(rng.choices((0, 1, 3), (2, 8, 1))[0]):
            self.press("ctrl+r")

    def outcome(self, rng):
        """What commands other than the two questions print, how they end and how long everything takes."""
        self.user.lay_down("output", rng.choice(OUTPUTS).encode())
        self.user.lay_down("exit-status", str(rng.choice((0, 0, 0, 1, 127))).encode())
        self.user.lay_down("seconds", str(rng.choices((0, 0.2, 2), (8, 2, 1))[0]).encode())

    # Through accessibility

    def elements(self):
        from driver import accessibility

        application = accessibility.application(self.pid)
        return list(application.descendants()) if application else []

    def press_control(self, rng):
        name, at = rng.choice(CONTROLS), rng.random()
        self.note(f"  {name}")
        with suppress(Exception):
            found = [element for element in self.elements() if element.name == name]
            if found:
                found[int(at * len(found))].act("Press", "Toggle", "ShowMenu")

    def accessible_action(self, rng):
        from driver.accessibility import Atspi, quietly

        at, what = rng.random(), rng.randrange(5)
        found = self.elements()
        if not found:
            return
        chosen = found[int(at * len(found))]
        self.note(f"  {chosen}, {what}")
        element = chosen.accessible
        has = quietly(element.get_interfaces) or ()
        if what == 0:
            quietly(lambda: Atspi.Component.grab_focus(element))
        elif what == 1 and "EditableText" in has:
            quietly(lambda: Atspi.EditableText.set_text_contents(element, "3000"))
        elif what == 2 and "Text" in has:
            quietly(lambda: Atspi.Text.set_selection(element, 0, 0, 5))
        elif "Action" in has:
            count = quietly(lambda: Atspi.Action.get_n_actions(element)) or 0
            if count:
                quietly(lambda: Atspi.Action.do_action(element, int(at * count)))

    # End

    def terminate(self, rng):
        number, pause = rng.choice((signal.SIGTERM, signal.SIGHUP, signal.SIGINT)), rng.random() * 0.05
        with suppress(ProcessLookupError):
            os.kill(self.pid, number)
        time.sleep(pause)
