"""Which session this is, and what differs by it for a person who looks at the screen and uses the clipboard."""

import os
import subprocess
import time

import kwin
import screen
import sway


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
