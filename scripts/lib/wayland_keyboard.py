"""A person at the keyboard of a wlroots compositor: the same keys by their place, through a virtual keyboard."""

import ctypes
import os
import socket
import struct
import time

from keyboard import BETWEEN_KEYS, Keyboard, PLACES
from waiting import Fault

REAL_MODIFIERS = {"Shift": 1, "Control": 4, "Alt": 8, "Super": 64}
DISPLAY = 1  # the object that is there from the begin
OF_X11, XKB_V1 = 8, 1  # what key codes of X are ahead of the kernel's, and the number of the keymap's format


def text_argument(text):
    data = text.encode() + b"\0"
    return struct.pack("I", len(data)) + data + b"\0" * (-len(data) % 4)


class Connection:
    """What little of the protocol it takes, on a socket of its own."""

    def __init__(self):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(10)
        self.socket.connect(os.path.join(os.environ["XDG_RUNTIME_DIR"], os.environ["WAYLAND_DISPLAY"]))
        self.newest, self.received = DISPLAY, b""
        self.registry, self.globals = None, {}

    def new(self):
        """Objects are numbered by their maker, without gaps."""
        self.newest += 1
        return self.newest

    def send(self, receiver, operation, arguments=b"", descriptors=()):
        message = struct.pack("II", receiver, (len(arguments) + 8) << 16 | operation) + arguments
        socket.send_fds(self.socket, [message], list(descriptors))

    def events(self):
        """Sends a question after all that was sent, and gives what came before its answer."""
        asked = self.new()
        self.send(DISPLAY, 0, struct.pack("I", asked))
        while True:
            while len(self.received) >= 8:
                sender, head = struct.unpack_from("II", self.received)
                if len(self.received) < head >> 16:
                    break
                body, self.received = self.received[8:head >> 16], self.received[head >> 16:]
                if sender == asked:
                    return
                if (sender, head & 0xFFFF) == (DISPLAY, 0):
                    raise Fault(f"the compositor refuses the keyboard: {body!r}")
                yield sender, head & 0xFFFF, body
            more = self.socket.recv(65536)
            if not more:
                raise Fault("the compositor is gone")
            self.received += more

    def settle(self):
        for _ in self.events():
            pass

    def bound(self, interface, version=1):
        if self.registry is None:
            self.registry = self.new()
            self.send(DISPLAY, 1, struct.pack("I", self.registry))
            for sender, _, body in self.events():
                if sender == self.registry:
                    number, length = struct.unpack_from("II", body)
                    self.globals[body[8:8 + length - 1].decode()] = number
        made = self.new()
        self.send(self.registry, 0, struct.pack("I", self.globals[interface]) + text_argument(interface)
                  + struct.pack("II", version, made))
        return made


def us_keymap():
    library = ctypes.CDLL("libxkbcommon.so.0")
    library.xkb_context_new.restype = library.xkb_keymap_new_from_names.restype = ctypes.c_void_p
    library.xkb_keymap_get_as_string.restype = ctypes.c_char_p
    context = ctypes.c_void_p(library.xkb_context_new(0))
    names = (ctypes.c_char_p * 5)(b"evdev", b"pc105", b"us", b"", b"")
    return library.xkb_keymap_get_as_string(
        ctypes.c_void_p(library.xkb_keymap_new_from_names(context, names, 0)), XKB_V1) + b"\0"


class PacedKeyboard(Keyboard):
    """The compositor has taken a key before the next is pressed, and applications have their time with each chord."""

    def press(self, chord):
        super().press(chord)
        time.sleep(BETWEEN_KEYS)


class WaylandKeyboard(PacedKeyboard):
    def __init__(self):
        self.connection, self.down = Connection(), 0
        seat, manager = self.connection.bound("wl_seat"), self.connection.bound("zwp_virtual_keyboard_manager_v1")
        self.made = self.connection.new()
        self.connection.send(manager, 0, struct.pack("II", seat, self.made))
        keymap = us_keymap()
        memory = os.memfd_create("keymap")
        os.write(memory, keymap)
        self.connection.send(self.made, 0, struct.pack("II", XKB_V1, len(keymap)), [memory])
        os.close(memory)
        self.connection.settle()

    def _key(self, place, down):
        # The modifiers go as a keyboard's would: with the key that changes them, and after it.
        self.connection.send(self.made, 1, struct.pack(
            "III", time.monotonic_ns() // 1_000_000 & 0xFFFFFFFF, PLACES[place] - OF_X11, down))
        if place in REAL_MODIFIERS:
            self.down = self.down | REAL_MODIFIERS[place] if down else self.down & ~REAL_MODIFIERS[place]
            self.connection.send(self.made, 2, struct.pack("IIII", self.down, 0, 0, 0))
        self.connection.settle()
