# SPDX-License-Identifier: MIT
"""The screen seen from outside the program: input that no program can tell from a person's, windows, settings."""

import itertools
import select
import struct
import time
from contextlib import suppress

from Xlib import XK, X, display, error
from Xlib.ext import xtest
from Xlib.protocol import event

MODIFIERS = {"ctrl": "Control_L", "shift": "Shift_L", "alt": "Alt_L"}
XDND_VERSION = 5


class Screen:
    def __init__(self, environment):
        self.display = display.Display(environment["DISPLAY"])
        # Windows come and go while they are asked about.
        self.display.set_error_handler(lambda *_: None)
        self.root = self.display.screen().root
        self.root.change_attributes(event_mask=X.StructureNotifyMask | X.SubstructureNotifyMask)
        self.own = self.root.create_window(0, 0, 1, 1, 0, X.CopyFromParent)
        self.tokens = itertools.count(1)
        self.offered = b""

    def atom(self, name):
        return self.display.intern_atom(name)

    # Windows

    def property(self, window, name):
        with suppress(error.XError):
            found = window.get_full_property(self.atom(name), X.AnyPropertyType)
            return list(found.value) if found else []
        return []

    def windows(self, pid):
        """The windows of a program that the window manager knows, the oldest first."""
        every = [self.display.create_resource_object("window", number) for number in self.property(self.root, "_NET_CLIENT_LIST")]
        return [window for window in every if self.property(window, "_NET_WM_PID") == [pid]]

    def front(self, pid):
        """The program's window that has the keyboard, given to one of them where none has it; None where there is none."""
        windows = self.windows(pid)
        active = self.property(self.root, "_NET_ACTIVE_WINDOW")
        for window in windows:
            if active == [window.id]:
                return window
        if not windows:
            return None
        self.tell(windows[-1], "_NET_ACTIVE_WINDOW", 2, X.CurrentTime)
        return windows[-1]

    def place(self, window):
        """Left, top, width and height on the screen."""
        with suppress(error.XError):
            size = window.get_geometry()
            corner = window.translate_coords(self.root, 0, 0)
            return -corner.x, -corner.y, size.width, size.height
        return 0, 0, 1, 1

    def tell(self, window, message, *data):
        """Asks the window manager to do something to a window."""
        data = (list(data) + [0] * 5)[:5]
        request = event.ClientMessage(window=window, client_type=self.atom(message), data=(32, data))
        self.root.send_event(request, event_mask=X.SubstructureRedirectMask | X.SubstructureNotifyMask)
        self.display.sync()

    def resize(self, window, left, top, width, height):
        window.configure(x=left, y=top, width=width, height=height)
        self.display.sync()

    def state(self, window, *names):
        """Turns states of a window on or off, such as "MAXIMIZED_VERT"."""
        self.tell(window, "_NET_WM_STATE", 2, *(self.atom(f"_NET_WM_STATE_{name}") for name in names))

    def ping(self, window, patience):
        """Whether the event loop that owns a window answers in time. Until then it has seen all input before."""
        token = next(self.tokens)
        self.send(window, "WM_PROTOCOLS", self.atom("_NET_WM_PING"), token, window.id)

        def answers(happened):
            return happened.type == X.ClientMessage and happened.data[0] == 32 and list(happened.data[1][:2]) == [self.atom("_NET_WM_PING"), token]

        return self.await_event(answers, patience)

    def send(self, window, message, *data):
        data = (list(data) + [0] * 5)[:5]
        window.send_event(event.ClientMessage(window=window, client_type=self.atom(message), data=(32, data)))
        self.display.flush()

    def await_event(self, wanted, patience):
        deadline = time.monotonic() + patience
        while True:
            while self.display.pending_events():
                happened = self.display.next_event()
                if happened.type == X.SelectionRequest:
                    self.hand_over(happened)
                elif wanted(happened):
                    return True
            left = deadline - time.monotonic()
            if left <= 0:
                return False
            select.select([self.display.fileno()], [], [], left)

    # Input

    def key(self, combination):
        *modifiers, name = combination.split("+")
        held = [self.display.keysym_to_keycode(XK.string_to_keysym(MODIFIERS[word])) for word in modifiers]
        symbol = XK.string_to_keysym(name)
        code, level = next(iter(self.display.keysym_to_keycodes(symbol)))
        shift = self.display.keysym_to_keycode(XK.XK_Shift_L)
        if level == 1 and shift not in held:
            held.append(shift)
        for press in (*held, code):
            xtest.fake_input(self.display, X.KeyPress, press)
        for release in (code, *reversed(held)):
            xtest.fake_input(self.display, X.KeyRelease, release)
        self.display.flush()

    def move(self, left, top):
        xtest.fake_input(self.display, X.MotionNotify, x=int(left), y=int(top))
        self.display.flush()

    def button(self, number, down):
        xtest.fake_input(self.display, X.ButtonPress if down else X.ButtonRelease, number)
        self.display.flush()

    def click(self, number=1):
        self.button(number, True)
        self.button(number, False)

    # Files dragged in from another program, after the XDND protocol

    def drop(self, window, left, top, addresses, let_go):
        """Drags addresses over a window, and drops them there or leaves."""
        self.offered = b"".join(address.encode() + b"\r\n" for address in addresses)
        self.own.set_selection_owner(self.atom("XdndSelection"), X.CurrentTime)
        self.send(window, "XdndEnter", self.own.id, XDND_VERSION << 24, self.atom("text/uri-list"))
        self.send(window, "XdndPosition", self.own.id, 0, int(left) << 16 | int(top), X.CurrentTime, self.atom("XdndActionCopy"))
        status, finished = self.atom("XdndStatus"), self.atom("XdndFinished")
        self.await_event(lambda happened: happened.type == X.ClientMessage and happened.client_type == status, 2)
        if let_go:
            self.send(window, "XdndDrop", self.own.id, 0, X.CurrentTime)
            self.await_event(lambda happened: happened.type == X.ClientMessage and happened.client_type == finished, 2)
        else:
            self.send(window, "XdndLeave", self.own.id)

    def hand_over(self, request):
        request.requestor.change_property(request.property, request.target, 8, self.offered)
        answer = event.SelectionNotify(
            time=request.time, requestor=request.requestor, selection=request.selection, target=request.target, property=request.property
        )
        request.requestor.send_event(answer)
        self.display.flush()

    # Settings of the desktop, after the XSETTINGS protocol

    def serve_settings(self):
        self.set_dots_per_inch(96)
        self.own.set_selection_owner(self.atom("_XSETTINGS_S0"), X.CurrentTime)
        self.display.sync()

    def set_dots_per_inch(self, number):
        name = b"Xft/DPI"
        setting = struct.pack("<BBH", 0, 0, len(name)) + name + bytes(-len(name) % 4) + struct.pack("<Ii", next(self.tokens), number * 1024)
        packed = struct.pack("<BxxxII", 0, next(self.tokens), 1) + setting
        kind = self.atom("_XSETTINGS_SETTINGS")
        self.own.change_property(kind, kind, 8, packed)
        self.display.flush()

    def title(self, window):
        return bytes(self.property(window, "_NET_WM_NAME")).decode(errors="replace")

    def close(self):
        self.display.close()
