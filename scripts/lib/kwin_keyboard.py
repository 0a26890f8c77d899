"""A person at KWin's keyboard: the same keys by their place, through its fake input."""

import struct

from keyboard import PLACES
from wayland_keyboard import OF_X11, Connection, PacedKeyboard, text_argument

AUTHENTICATE, KEY = 0, 10


class KWinKeyboard(PacedKeyboard):
    def __init__(self):
        self.connection = Connection()
        self.made = self.connection.bound("org_kde_kwin_fake_input", 4)
        self.connection.send(self.made, AUTHENTICATE, text_argument("test") + text_argument("plays a person"))
        self.connection.settle()

    def _key(self, place, down):
        self.connection.send(self.made, KEY, struct.pack("II", PLACES[place] - OF_X11, down))
        self.connection.settle()
