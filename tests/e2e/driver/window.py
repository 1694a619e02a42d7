# SPDX-License-Identifier: MIT
"""The main window, in the words of a person who uses it."""

from .accessibility import announcements
from .waiting import until

# The labels of the choices under "Source Type", and of the field that each one shows.
FIELDS = {
    "Port / App URL": "Port or URL",
    "File": "File Path",
    "Directory": "Directory Path",
    "HTTPS (self-signed)": "Local HTTPS Port",
    "Plain Text": "Text Content",
    "TCP Forward": "Local Port",
}

RESETS = ("Reset All Serves", "Reset All Funnels", "Reset Everything")

TEXT = ("text", "entry")


class Window:
    def __init__(self, application, desktop):
        self.application = application
        self.desktop = desktop
        self.announcements = announcements()
        self.frame = application.await_one("Brevane", "frame")

    def await_idle(self):
        """Waits until the header shows no running command."""
        until("the window to be idle", lambda: self.refresh_button() and not self.frame.find("Busy"))

    def refresh_button(self):
        return self.frame.find("Refresh (Ctrl+R)", "push button")

    def refresh(self):
        self.refresh_button().press()
        self.await_idle()

    def await_label(self, text):
        return self.frame.await_one(text, "label")

    def await_announcement(self, message):
        """Waits until a message, such as a toast, has been shown, even if it is hidden again."""
        until(f"the message {message!r}", lambda: self.announcements.take(self.application.pid, message))

    # The form

    def fill(self, kind, source, mode="Serve", path=None, background=True):
        """Fills in the form; leaves the URL path as it is if `path` is None."""
        self.frame.await_one(mode, ("radio button", "check box", "toggle button")).switch(True)
        self.choose(kind)
        self.field(FIELDS[kind]).write(source)
        if path is not None:
            self.field("URL Path (optional)").write(path)
        self.frame.await_one("Run in background", "check box").switch(background)

    def field(self, label):
        return self.frame.await_one(label, TEXT)

    def choose(self, kind):
        """Chooses a source type from the drop-down list."""
        box = until("the choice of source types", lambda: self.frame.find(role="combo box"))
        box.press()
        until("the list to drop down", lambda: box.find(role="list item"))
        self.move("Home", box, next(iter(FIELDS)))
        for item in list(FIELDS)[1 : list(FIELDS).index(kind) + 1]:
            self.move("Down", box, item)
        self.desktop.key("Return")
        self.field(FIELDS[kind])

    def move(self, key, choice, item):
        """Presses a key, and waits until it has moved the focus to this item. Keys in faster succession than any person's get lost."""
        self.desktop.key(key)
        until(f"{item} to be focused", lambda: any(found.has("focused") for found in choice.all(item)))

    def preview(self):
        return self.frame.await_one("Preview", TEXT).text

    def start_button(self, mode="Serve"):
        return self.frame.await_one(f"Start {mode}", "push button")

    def start(self, mode="Serve"):
        self.start_button(mode).press()

    def share(self, kind, source, mode="Serve", **form):
        """Makes a share and waits until the window says that it has been made."""
        self.fill(kind, source, mode, **form)
        self.start(mode)

        def made():
            error = self.form_error()
            assert error is None, error
            return self.field(FIELDS[kind]).text == ""

        until("the share", made)
        self.await_announcement(f"{mode} started successfully")
        self.await_idle()

    def form_error(self):
        """The error that the form shows; None if there is none."""
        return self.shown_error(beside="Run in background", rather_than="Clear")

    def shown_error(self, beside, rather_than):
        """The text of the error that is nearer to one control than to another."""
        for text in self.frame.all("Error", TEXT):
            around = text.parent
            while around and not around.find(beside) and not around.find(rather_than):
                around = around.parent
            if around and around.find(beside) and not around.find(rather_than):
                return text.text
        return None

    def await_form_error(self):
        """Waits until the start has failed and returns the error."""
        return until("an error in the form", lambda: self.start_has_ended() and self.form_error())

    def start_has_ended(self):
        return any(self.frame.find(f"Start {mode}", "push button") for mode in ("Serve", "Funnel"))

    # The list

    def rows(self):
        """The names of the rows, such as "Serve, https://host, folder /srv/site"."""
        return [row.name for row in self.row_elements()]

    def row_elements(self):
        return [item for item in self.frame.all(role="list item") if item.find("Stop share")]

    def row(self, *words):
        """The row whose name contains all these words; None if there is none."""
        return next((row for row in self.row_elements() if all(word in row.name for word in words)), None)

    def await_row(self, *words):
        return until(f"a row with {words}", lambda: self.row(*words))

    def await_empty(self):
        self.await_label("No active shares")

    def stop(self, row, answer="Stop"):
        """Presses a row's stop button and answers the confirmation."""
        row.find("Stop share", "push button").press()
        self.answer(answer)

    def reset(self, item, answer="Reset"):
        """Chooses a reset from the menu and answers the confirmation."""
        button = self.frame.await_one("Reset Shares")
        button.press()
        until("the menu to open", lambda: button.find(item, "menu item"))
        for choice in RESETS[: RESETS.index(item) + 1]:
            self.move("Down", button, choice)
        self.desktop.key("Return")
        self.answer(answer)

    def answer(self, button):
        """Presses a button of the open confirmation and waits until it has closed."""
        dialog = until("a question", lambda: self.application.find(role="dialog"))
        dialog.await_one(button, "push button").press()
        until("the question to go", lambda: not self.application.find(role="dialog"))

    def error(self):
        """The text of the banner; None if there is none."""
        return self.shown_error(beside="Clear", rather_than="Run in background")

    def await_error(self):
        return until("an error", self.error)

    def clear_error(self):
        self.frame.await_one("Clear", "push button").press()
        until("the banner to go", lambda: self.error() is None)
