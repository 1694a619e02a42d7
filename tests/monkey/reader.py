# SPDX-License-Identifier: MIT
"""A screen reader that never pauses: it asks all that AT-SPI offers, also about what may be gone by now."""

import collections
import os
import random
import signal
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parents[1] / "e2e"))

from driver.accessibility import Atspi, GLib, desktop, quietly  # noqa: E402

# All that Qt sends. Not all of "object:": libatspi makes an event of its own when it drops an element, "defunct", and hearing
# of it takes the element up again and drops it again, without end.
EVENTS = (
    *(f"object:{kind}" for kind in ("active-descendant-changed", "announcement", "attributes-changed", "bounds-changed", "children-changed",
      "column-deleted", "column-inserted", "link-selected", "model-changed", "property-change", "row-deleted", "row-inserted", "selection-changed",
      "text-attributes-changed", "text-caret-moved", "text-changed", "text-selection-changed", "value-changed", "visible-data-changed")),
    *(f"object:state-changed:{state}" for state in ("active", "busy", "checked", "enabled", "expanded", "focused", "selected", "sensitive", "showing", "visible")),
    "window:", "focus:", "document:",
)  # fmt: skip
REMEMBERED = 2000


class Reader:
    def __init__(self):
        self.asked = 0
        self.walks = 0
        self.heard = 0
        self.remembered = []
        self.news = collections.deque(maxlen=50)
        self.listener = Atspi.EventListener.new(self.hear)
        for event in EVENTS:
            self.listener.register(event)

    def hear(self, event):
        # Asking here would not end: answers are waited for with new events coming in.
        self.heard += 1
        self.news.append(event.source)

    def ask(self, element):
        """Everything about one element."""
        self.asked += 1
        questions = [
            element.get_name, element.get_role_name, element.get_description, element.get_state_set, element.get_attributes,
            element.get_relation_set, element.get_index_in_parent, element.get_parent,
            # One that has gone since the children were counted.
            lambda: element.get_child_at_index(quietly(element.get_child_count) or 0),
        ]  # fmt: skip
        # Qt does not survive being asked for an interface that an element has not.
        for interface in quietly(element.get_interfaces) or ():
            questions += getattr(self, interface.lower(), lambda _: ())(element)
        for question in questions:
            quietly(question)

    def component(self, element):
        yield lambda: element.get_extents(Atspi.CoordType.SCREEN)
        yield lambda: Atspi.Component.get_accessible_at_point(element, 5, 5, Atspi.CoordType.WINDOW)

    def action(self, element):
        yield lambda: [Atspi.Action.get_action_name(element, index) for index in range(Atspi.Action.get_n_actions(element))]

    def selection(self, element):
        yield lambda: Atspi.Selection.get_n_selected_children(element)

    def value(self, element):
        yield lambda: Atspi.Value.get_current_value(element)

    def table(self, element):
        yield lambda: Atspi.Table.get_accessible_at(element, 0, 0)
        yield lambda: Atspi.Table.get_n_rows(element)

    def text(self, element):
        count = quietly(lambda: Atspi.Text.get_character_count(element)) or 0
        yield lambda: Atspi.Text.get_caret_offset(element)
        yield lambda: Atspi.Text.get_n_selections(element)
        if count:
            yield lambda: Atspi.Text.get_text(element, 0, min(count, 1000))
            yield lambda: Atspi.Text.get_character_extents(element, count - 1, Atspi.CoordType.SCREEN)
            yield lambda: Atspi.Text.get_string_at_offset(element, count // 2, Atspi.TextGranularity.WORD)
            yield lambda: Atspi.Text.get_attribute_run(element, count // 2, True)

    def walk(self, element):
        self.ask(element)
        self.remember(element)
        GLib.MainContext.default().iteration(False)
        if self.news:
            self.ask(self.news.pop())
        self.ask(random.choice(self.remembered))
        for index in range(quietly(element.get_child_count) or 0):
            child = quietly(lambda index=index: element.get_child_at_index(index))
            if child:
                self.walk(child)

    def remember(self, element):
        if len(self.remembered) < REMEMBERED:
            self.remembered.append(element)
        else:
            self.remembered[random.randrange(REMEMBERED)] = element


def main():
    reader = Reader()

    def end(*_):
        print(f"asked about {reader.asked} elements, in {reader.walks} walks, and heard {reader.heard} events", flush=True)
        os._exit(0)

    signal.signal(signal.SIGTERM, end)
    while True:
        root = desktop()
        for index in range(quietly(root.get_child_count) or 0):
            application = quietly(lambda index=index: root.get_child_at_index(index))
            if application:
                application.set_cache_mask(Atspi.Cache.NONE)
                reader.walk(application)
                reader.walks += 1
        GLib.MainContext.default().iteration(False)


main()
