"""A person at the shell's keyboard: the same keys by their place, as somebody at a remote desktop presses them."""

import dbus
from keyboard import PLACES
from wayland_keyboard import OF_X11, PacedKeyboard

REMOTE_DESKTOP = "org.gnome.Mutter.RemoteDesktop"


class GnomeKeyboard(PacedKeyboard):
    def __init__(self):
        bus = dbus.SessionBus()
        desktop = bus.get_object(REMOTE_DESKTOP, "/org/gnome/Mutter/RemoteDesktop")
        path = desktop.CreateSession(dbus_interface=REMOTE_DESKTOP)
        self.session = dbus.Interface(bus.get_object(REMOTE_DESKTOP, path), f"{REMOTE_DESKTOP}.Session")
        self.session.Start()

    def _key(self, place, down):
        self.session.NotifyKeyboardKeycode(dbus.UInt32(PLACES[place] - OF_X11), bool(down))
