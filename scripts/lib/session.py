"""Which session this is, and what differs by it for a person who looks at the screen and uses the clipboard."""

import functools
import os
import subprocess
import time

import kwin
import screen
import sway
from waiting import wait_for

PLACES = {"ctrl": "Control", "shift": "Shift", "alt": "Alt", "super": "Super"}


def is_wayland():
    return bool(os.environ.get("WAYLAND_DISPLAY"))


def is_gnome():
    return os.environ.get("XDG_CURRENT_DESKTOP") == "GNOME"


def has_data_control():
    """Whether programs without a window may use the clipboard by Wayland; else X11 shares it with them."""
    return is_wayland() and not is_gnome()


def keyboard():
    if kwin.is_session():
        from kwin_keyboard import KWinKeyboard
        return KWinKeyboard()
    if is_gnome():
        from gnome_keyboard import GnomeKeyboard
        return GnomeKeyboard()
    if is_wayland():
        from wayland_keyboard import WaylandKeyboard
        return WaylandKeyboard()
    from keyboard import Keyboard
    return Keyboard()


@functools.cache
def hands():
    return keyboard()


def press(*keys):
    """Chords such as "ctrl+s", one after the other."""
    if not is_wayland():
        screen.press(*keys)
        return
    for chord in keys:
        hands().press("+".join(PLACES.get(key, key) for key in chord.split("+")))
        time.sleep(screen.BETWEEN_KEYS / 1000)


def type_text(text):
    """By a US keyboard, in small letters."""
    if is_wayland():
        press(*("space" if letter == " " else letter for letter in text))
    else:
        screen.type_text(text)


def wait_for_window(title):
    """That has these words in its title, and gets the keyboard. Gives its number where windows have one."""
    if is_wayland():
        wait_for(f"the window '{title}' in front", lambda: title in (front_title() or ""), 30)
        return None
    window = wait_for(f"the window '{title}'", lambda: screen.window_named(title), 20)
    screen.focus(window)
    return window


def picture(path):
    """Of the whole screen."""
    if kwin.is_session():
        kwin.screen_picture(path, os.environ["TAVRELON_BUILD"] + "/src/tavrelon-window-picture")
    elif is_gnome():
        import gnome
        gnome.screen_picture(path)
    elif is_wayland():
        subprocess.run(["grim", str(path)], stdin=subprocess.DEVNULL, capture_output=True, timeout=20, check=True)
    else:
        screen.picture(path)


def front_title():
    if kwin.is_session():
        return kwin.front_title()
    if is_gnome():
        import gnome
        return gnome.front_title()
    if is_wayland():
        return sway.focused_title()
    return screen.run("xdotool", "getwindowfocus", "getwindowname").stdout.strip()


def front_window():
    return str(sway.focused()["id"]) if sway.is_session() else screen.answer("xdotool", "getactivewindow")


def bring_to_front(window):
    if sway.is_session():
        sway.ask(f"[con_id={window}] focus")
    else:
        screen.run("xdotool", "windowactivate", "--sync", window)
    time.sleep(0.15)  # a person looks first


def set_clipboard(text, selection="clipboard"):
    command = ["wl-copy", "-t", "text/plain;charset=utf-8"] if has_data_control() else ["xclip", "-selection", selection, "-i"]
    subprocess.run(command, input=text.encode(), timeout=10, check=True, stdout=subprocess.DEVNULL)


def clipboard():
    command = ["wl-paste", "-n"] if has_data_control() else ["xclip", "-selection", "clipboard", "-o"]
    return subprocess.run(command, capture_output=True, timeout=10).stdout.decode()
