# SPDX-License-Identifier: MIT
"""The desktop's portal, as far as the window asks for it: the colour scheme."""

import threading

from gi.repository import Gio, GLib

NAME = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
GROUP, KEY = "org.freedesktop.appearance", "color-scheme"
INTERFACE = """<node><interface name="org.freedesktop.portal.Settings">
<method name="ReadAll"><arg type="as" direction="in"/><arg type="a{sa{sv}}" direction="out"/></method>
<signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
</interface></node>"""


class Portal:
    def __init__(self, environment):
        self.scheme = 0
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.context = GLib.MainContext.new()
        self.context.push_thread_default()
        self.bus = Gio.DBusConnection.new_for_address_sync(environment["DBUS_SESSION_BUS_ADDRESS"], flags, None, None)
        interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
        self.bus.register_object(PATH, interface, self.answer, None, None)
        Gio.bus_own_name_on_connection(self.bus, NAME, Gio.BusNameOwnerFlags.NONE, None, None)
        self.context.pop_thread_default()
        threading.Thread(target=self.run, daemon=True).start()

    def close(self):
        self.bus.close_sync(None)

    def run(self):
        GLib.MainLoop.new(self.context, False).run()

    def answer(self, _connection, _sender, _path, _interface, _method, _arguments, invocation):
        invocation.return_value(GLib.Variant("(a{sa{sv}})", ({GROUP: {KEY: GLib.Variant("u", self.scheme)}},)))

    def set_scheme(self, scheme):
        self.scheme = scheme
        changed = GLib.Variant("(ssv)", (GROUP, KEY, GLib.Variant("u", scheme)))
        self.bus.emit_signal(None, PATH, "org.freedesktop.portal.Settings", "SettingChanged", changed)
