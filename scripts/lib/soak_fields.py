"""The fields that a soak run writes in, and what each must hold."""

import os
import signal
import time
from pathlib import Path

import screen
from programs import EDITORS, Program
from waiting import Fault, wait_for

LETTERS = "qwertyuiop[]asdfghjkl;'zxcvbnm,."
CYRILLIC = "йцукенгшщзхъфывапролджэячсмитьбю"
LAYOUTS = {
    "us": str.maketrans({}),
    "de": str.maketrans("yz", "zy"),
    "us,ru": str.maketrans(LETTERS, CYRILLIC),
}


class Field:
    """A program with one text field. `text` is what the field must hold."""

    def __init__(self, kind, desk):
        self.kind, self.desk, self.text = kind, desk, ""
        self.path = desk.output / f"{kind}.txt"
        self.program = None

    @property
    def is_terminal(self):
        return self.kind == "xterm"

    def open(self):
        self.path.write_text(self.text, encoding="utf-8")
        self.program = Program(self.command(), self.desk.output / f"{self.kind}.log",
                               {"XDG_CONFIG_HOME": str(self.desk.editor_config)})
        self.window = wait_for(f"a window of {self.kind}", lambda: screen.window_named(f"{self.kind}.txt"), seconds=30)
        self.focus()
        time.sleep(0.5)  # the window is there before its text takes keys

    def command(self):
        if self.is_terminal:
            return ["xterm", "-T", "xterm.txt", "-e", f"stty iutf8; exec cat >>'{self.path}'"]
        return [*EDITORS[self.kind], str(self.path)]

    def focus(self):
        screen.focus(self.window)
        time.sleep(0.1)  # what follows the focus in the program and in the editor

    def clear(self):
        """Empties the field and leaves the caret in it."""
        if self.is_terminal:
            self.desk.keyboard.press("Control+u")
        else:
            self.desk.keyboard.press("Control+a")
            self.desk.keyboard.press("Delete")
            self.text = ""
        self.come_to_rest()

    def start_again(self):
        """Puts a field whose content nobody knows back into a known state."""
        self.clear()
        if self.is_terminal:
            self.text = self._held()

    def type(self, places):
        self.desk.keyboard.type_places(places)
        self.come_to_rest()

    def come_to_rest(self):
        """Waits as a user does who looks whether all letters are there. A program that was not let run on a busy machine
        is ready to run; one that has nothing left to do sleeps."""
        asleep = 0
        for _ in range(400):
            stat = Path(f"/proc/{self.program.process.pid}/stat").read_text(encoding="utf-8", errors="replace")
            asleep = asleep + 1 if stat.rpartition(")")[2].split()[0] == "S" else 0
            if asleep == 12:
                return
            time.sleep(0.025)
        raise Fault(f"{self.kind} does not come to rest")

    def expect(self, text):
        """Sees that the field holds the text, or in a terminal that this is the line at hand."""
        if self.is_terminal:
            self.desk.keyboard.press("Return")
            wanted = self.text + text + "\n"
            self._wait_for_file(wanted, lambda: None)
            self.text = wanted
        else:
            self._wait_for_file(text, lambda: self.desk.keyboard.press("Control+s"))
            self.text = text

    def _wait_for_file(self, wanted, save):
        def saved():
            save()
            return self._held() == wanted
        try:
            wait_for("the field", saved, seconds=6, pause=0.3)
        except Fault:
            raise Fault(f"{self.kind} holds {self._held()!r} instead of {wanted!r}") from None

    def _held(self):
        held = self.path.read_text(encoding="utf-8", errors="replace")
        # mousepad ends what it saves with a line break of its own
        return held[:-1] if self.kind == "mousepad" and held.endswith("\n") else held

    def signal(self, number):
        """Also to the children that it may have."""
        os.kill(self.program.process.pid, number)

    def kill_and_open_again(self):
        self.signal(signal.SIGKILL)
        self.program.process.wait()
        wait_for(f"the end of the window of {self.kind}", lambda: not screen.window_named(f"{self.kind}.txt"))
        if self.is_terminal:
            self.text = ""
        self.open()
