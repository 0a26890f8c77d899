"""The dashboard of a running Tavrelon, opened, used and closed as people do it."""

import os
import re
import subprocess
import time

import screen
from accessible import Windows
from waiting import Fault, wait_for


class Dashboard:
    def __init__(self, tavrelon, keyboard):
        self.tavrelon, self.keyboard = tavrelon, keyboard
        self.windows = None

    def window(self):
        """Panels have that name too, but no window manager knows them."""
        managed = {int(each, 16) for each in re.findall("0x[0-9a-f]+", screen.run("xprop", "-root", "_NET_CLIENT_LIST").stdout)}
        found = screen.run("xdotool", "search", "--onlyvisible", "--name", "^Tavrelon$").stdout.split()
        return next((window for window in found if int(window) in managed), None)

    def open(self):
        """By a second start of the program, as a menu does it."""
        called = subprocess.run([self.tavrelon.executable], env={**os.environ, **self.tavrelon.environment}, stdin=subprocess.DEVNULL,
                                capture_output=True, text=True, timeout=20)
        if called.returncode != 0:
            raise Fault(f"the second start ended with status {called.returncode}: {called.stdout}{called.stderr}")
        self.wait_until_open()

    def wait_until_open(self):
        wait_for("the dashboard", self.window, 20)
        self.windows = self.windows or Windows("Tavrelon")
        self.windows.wait_for("Help")

    def close(self):
        screen.focus(self.window())
        # Qt 6.4 loses its copy of a key when the window goes before the accessibility bus has answered for the key.
        with self.keyboard.holding("Alt"):
            time.sleep(0.3)
            self.keyboard.press("F4")
            wait_for("the end of the dashboard", lambda: not self.window())

    def show(self, page, what):
        self.windows.click(page, "page tab")
        self.windows.wait_for(what)
