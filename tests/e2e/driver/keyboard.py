# SPDX-License-Identifier: MIT
"""A keyboard of a Wayland compositor."""

import os
import socket
import struct
import time

# The codes of Linux (input-event-codes.h), for a keyboard of the United States.
CODES = {"Escape": 1, "Tab": 15, "Return": 28, "ctrl": 29, "shift": 42, "alt": 56, "space": 57, "F4": 62, "Home": 102, "Down": 108}
for first, row in (2, "1234567890"), (16, "qwertyuiop"), (30, "asdfghjkl"), (44, "zxcvbnm"):
    CODES |= {letter: first + place for place, letter in enumerate(row)}

KEYMAP = b"""xkb_keymap {
    xkb_keycodes { include "evdev" };
    xkb_types { include "complete" };
    xkb_compat { include "complete" };
    xkb_symbols { include "pc+us" };
};\0"""

# Bits of the modifiers in that keymap.
MODIFIERS = {"shift": 1, "ctrl": 4, "alt": 8}

DISPLAY = 1


class Keyboard:
    """A client of the protocol virtual-keyboard-unstable-v1.

    It exists until it is closed: when a keyboard comes or goes, a compositor takes the focus from the window for an instant,
    which closes its menus.
    """

    def __init__(self, path):
        self.server = socket.socket(socket.AF_UNIX)
        self.server.settimeout(60)
        self.server.connect(str(path))
        self.received = b""
        self.objects = DISPLAY
        self.held = 0
        registry = self.new()
        self.send(DISPLAY, 1, registry)
        found = {}
        for sender, event, body in self.sync():
            if (sender, event) == (registry, 0):
                name, length = struct.unpack_from("=II", body)
                found[body[8 : 7 + length].decode()] = name
        seat, manager = (self.bind(registry, found, interface) for interface in ("wl_seat", "zwp_virtual_keyboard_manager_v1"))
        self.keyboard = self.new()
        self.send(manager, 0, seat, self.keyboard)
        with open(os.memfd_create("keymap"), "wb") as file:
            file.write(KEYMAP)
            file.flush()
            self.send(self.keyboard, 0, 1, len(KEYMAP), descriptors=[file.fileno()])
        self.sync()

    def close(self):
        self.server.close()

    def press(self, combination):
        """Presses and releases keys, such as "ctrl+w"."""
        names = combination.split("+")
        for name in names:
            self.turn(name, True)
        for name in reversed(names):
            self.turn(name, False)

    def turn(self, name, down):
        """Presses or releases one key."""
        self.send(self.keyboard, 1, time.monotonic_ns() // 1_000_000 & 0xFFFFFFFF, CODES[name], down)
        if name in MODIFIERS:
            self.held ^= MODIFIERS[name]
            self.send(self.keyboard, 2, self.held, 0, 0, 0)
        self.sync()

    # The protocol: messages of 32-bit words to numbered objects

    def new(self):
        self.objects += 1
        return self.objects

    def bind(self, registry, found, interface):
        """Makes an object of a global interface."""
        name = interface.encode() + b"\0"
        bound = self.new()
        self.send(registry, 0, found[interface], len(name), name + bytes(-len(name) % 4), 1, bound)
        return bound

    def send(self, receiver, request, *arguments, descriptors=()):
        body = b"".join(word if isinstance(word, bytes) else struct.pack("=I", word) for word in arguments)
        message = struct.pack("=II", receiver, len(body) + 8 << 16 | request) + body
        socket.send_fds(self.server, [message], descriptors)

    def sync(self):
        """Waits until the compositor has handled all requests, and returns its events."""
        done = self.new()
        self.send(DISPLAY, 0, done)
        events = []
        while not events or events[-1][0] != done:
            events.append(self.receive())
        return events

    def receive(self):
        """The next event: its sender, its number and its arguments."""
        sender, head = struct.unpack("=II", self.take(8))
        body = self.take((head >> 16) - 8)
        assert (sender, head & 0xFFFF) != (DISPLAY, 0), f"the compositor refused a request: {body}"
        return sender, head & 0xFFFF, body

    def take(self, count):
        while len(self.received) < count:
            more = self.server.recv(4096)
            assert more, "the compositor has ended"
            self.received += more
        taken, self.received = self.received[:count], self.received[count:]
        return taken
