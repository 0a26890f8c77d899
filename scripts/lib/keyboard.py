"""A person at the keyboard of the display: keys by their place, whatever the layout gives there."""

import contextlib
import ctypes
import time

PLACES = {name: code for names, first in (
    ("1234567890-=", 10), ("qwertyuiop[]", 24), ("asdfghjkl;'`", 38), ("\\zxcvbnm,./", 51)) for code, name in enumerate(names, first)}
PLACES |= {"Escape": 9, "BackSpace": 22, "Tab": 23, "Return": 36, "Control": 37, "Shift": 50, "Alt": 64, "space": 65,
           " ": 65, "Home": 110, "Up": 111, "Left": 113, "Right": 114, "End": 115, "Down": 116, "Insert": 118, "Delete": 119, "Super": 133}
PLACES |= {f"F{number}": 66 + number for number in range(1, 11)}
USE_CORE_KEYBOARD = 0x100
GRAB_ASYNCHRONOUS, GRABBED, CURRENT_TIME = 1, 0, 0
BETWEEN_KEYS = 0.02  # seconds, a very quick typist


class KeyboardState(ctypes.Structure):
    _fields_ = [("group", ctypes.c_ubyte), ("locked_group", ctypes.c_ubyte), ("base_group", ctypes.c_ushort),
                ("latched_group", ctypes.c_ushort), ("mods", ctypes.c_ubyte), ("base_mods", ctypes.c_ubyte),
                ("latched_mods", ctypes.c_ubyte), ("locked_mods", ctypes.c_ubyte), ("rest", ctypes.c_ubyte * 16)]


class Keyboard:
    places = PLACES

    after_modifier = BETWEEN_KEYS  # no finger is faster

    def __init__(self):
        self.x11, self.xtst = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXtst.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(None))
        self.x11.XDefaultRootWindow.restype = ctypes.c_ulong
        self.x11.XGrabKeyboard.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_int, ctypes.c_int, ctypes.c_ulong]
        self.x11.XUngrabKeyboard.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
        if not self.display:
            raise RuntimeError("no display can be opened")

    def _key(self, place, down):
        self.xtst.XTestFakeKeyEvent(self.display, PLACES[place], down, 0)
        self.x11.XFlush(self.display)

    @contextlib.contextmanager
    def holding(self, key):
        self._key(key, 1)
        time.sleep(BETWEEN_KEYS)
        try:
            yield
        finally:
            self._key(key, 0)

    def press(self, chord):
        """A chord such as "Control+Shift+z"; the last key is struck while the others are held."""
        *modifiers, last = chord.split("+")
        for key in modifiers:
            self._key(key, 1)
            time.sleep(self.after_modifier)
        self._key(last, 1)
        for key in (last, *reversed(modifiers)):
            self._key(key, 0)
        time.sleep(BETWEEN_KEYS)

    def type_places(self, places):
        for place in places:
            self.press(place)

    def held(self):
        """The key codes that the server holds for pressed."""
        keys = (ctypes.c_char * 32)()
        self.x11.XQueryKeymap(self.display, keys)
        return [8 * index + bit for index, byte in enumerate(keys.raw) for bit in range(8) if byte >> bit & 1]

    def modifiers(self):
        """The modifiers that would go with the next key, those that are locked or latched included."""
        state = KeyboardState()
        self.x11.XkbGetState(self.display, USE_CORE_KEYBOARD, ctypes.byref(state))
        return state.mods

    @contextlib.contextmanager
    def locked(self):
        """As a screen's lock does it, all keys come here and to no window."""
        root = self.x11.XDefaultRootWindow(self.display)
        if self.x11.XGrabKeyboard(self.display, root, 0, GRAB_ASYNCHRONOUS, GRAB_ASYNCHRONOUS, CURRENT_TIME) != GRABBED:
            raise RuntimeError("another program holds the keyboard")
        try:
            yield
        finally:
            self.x11.XUngrabKeyboard(self.display, CURRENT_TIME)
            self.x11.XSync(self.display, 1)  # the keys that came are nobody's

    def use_group(self, group):
        self.x11.XkbLockGroup(self.display, USE_CORE_KEYBOARD, group)
        self.x11.XFlush(self.display)
