"""What works in one application, as seen: a row of the table of applications. TAVRELON_TEST_EDITOR says in which."""

import json
import os
import subprocess
import time
from pathlib import Path

import screen
from editors import let_keys_arrive
from conftest import history
from session import clipboard, set_clipboard
from waiting import Fault, wait_for

SILENT = "tells accessibility nothing unless started with --force-renderer-accessibility"
ONE_HEIGHT = "says that all lines are at the height of the first; the field's frame serves"
ABSENT = "is not on the accessibility bus"
SCREEN_ONLY = "tells its screen, which is no field"
COPIED = "no: is seen only by copying what it holds, which changes the clipboard by which this is told"
KEPT_BY_PROGRAM = "cannot take back what its program has got"
# Why something does not work in an application, for everything of which this is known.
KNOWN = {
    "featherpad": {"caret": ONE_HEIGHT},
    "qt6-editor": {"caret": ONE_HEIGHT},
    "chromium": dict.fromkeys(["value", "selection", "by accessibility", "caret"], SILENT),
    "chromium-accessible": {"by accessibility": "offers no interface for editing"},
    "xterm": dict.fromkeys(["value", "selection", "by accessibility", "caret"], ABSENT) | {"undo": KEPT_BY_PROGRAM},
    "lxterminal": dict.fromkeys(["value", "selection", "by accessibility"], SCREEN_ONLY) | {"undo": KEPT_BY_PROGRAM},
    "firefox": {"by accessibility": "answers that it wrote and changes nothing"},
    "falkon": dict.fromkeys(["value", "selection", "by accessibility", "caret"], "tells nothing of its page"),
    "libreoffice": {"value": "tells the paragraph of the caret only", "caret": "tells places that are off by more than a line"},
}
REST = 2.3  # seconds; after an answer the next request waits until the last one has left the stage


def comes(condition, seconds=3.0):
    try:
        return bool(wait_for("it", condition, seconds, pause=0.1))
    except Fault:
        return False


class Row:
    def __init__(self, desk, name):
        self.desk, self.name, self.keyboard = desk, name, desk.keyboard
        self.editor, self.tavrelon = desk.open(name), desk.start()
        self.probe = subprocess.Popen([desk.build / "tools/stage/tavrelon-field-probe"], stdin=subprocess.PIPE,
                                      stdout=subprocess.PIPE, text=True)
        terminal = self.editor.is_terminal
        # A terminal keeps showing it, and ASCII text beside another script passes for half of a composition.
        self.answer = "ANSWER" if terminal else "ANSWER 你好 👍"
        self.word, self.behind = ("oneword", "") if terminal else ("word", " after>")
        self.cells, self.surprises = [name], []

    def see(self, column, works, yes="yes"):
        """Enters what was seen. What does not work must be known, and what is known not to work must not."""
        reason = KNOWN.get(self.name, {}).get("by accessibility" if column == "in place" else column, "")
        if works == bool(reason):
            self.surprises.append(f"{column}: {'works' if works else 'does not work'}")
        self.cells.append(yes if works else f"no: {reason}")

    def field(self):
        self.probe.stdin.write("\n")
        self.probe.stdin.flush()
        return json.loads(self.probe.stdout.readline())

    def caret(self):
        return self.field().get("caret")

    def click_first_row(self, times):
        # The first pixels below a menu bar, if there is one, are the first row.
        screen.run("xdotool", "mousemove", "--window", screen.answer("xdotool", "getactivewindow"), "20",
                   "8" if self.name == "xterm" else "40", "click", "--repeat", str(times), "1")
        time.sleep(0.6)  # longer than a double click

    def select_word(self):
        """Selects the four letters before the caret, or the word on a terminal's first row."""
        if self.editor.is_terminal:
            self.click_first_row(2)
        else:
            self.editor.select_backward(4)

    def line_with(self, text):
        return "<before " + text + self.behind

    def request(self, typed, asked):
        """Opens the input, types, commits; whether the model was asked this and the answer stands in its place."""
        count = len(history(self.tavrelon))
        self.desk.answers(self.answer)
        self.desk.request(self.tavrelon, self.editor, typed)
        wait_for("the answer in the history", lambda: len(history(self.tavrelon)) > count, 20)
        rested = time.monotonic() + REST
        held = self.editor.saved(self.line_with(self.answer))
        heard = self.desk.service.user_messages()
        time.sleep(max(0.0, rested - time.monotonic()))
        return heard[0].startswith(asked) and held == self.line_with(self.answer)

    def caret_behind(self, key):
        self.keyboard.press(key)
        let_keys_arrive()
        return self.caret()

    def follows_caret(self):
        """Whether the caret's place follows the caret to the right and to the second line."""
        if self.editor.is_terminal:
            self.click_first_row(1)  # or the selection's place would be told
            before, after = self.caret(), self.caret_behind("x")
            return bool(before and after and after[0] > before[0] and after[3] < 60)
        first, second, third = (self.caret_behind(key) for key in ("Control+Home", "Right", "Down"))
        return bool(first and second and third and second[0] > first[0] and second[3] < 60 and
                    second[1] < third[1] < second[1] + 60 and self.is_found_at(third))

    def is_found_at(self, caret):
        """Whether a click at the caret's place puts the caret there from elsewhere."""
        before = self.field()
        self.keyboard.press("Control+Home")
        let_keys_arrive()
        elsewhere = self.field()
        screen.run("xdotool", "mousemove", str(round(caret[0])), str(round(caret[1] + caret[3] / 2)), "click", "1")
        place = (before["value"], before.get("range"))
        return elsewhere.get("range") != place[1] and comes(
            lambda: (now := self.field()) and (now["value"], now.get("range")) == place)

    def steps_back_to(self, line):
        """The number of undo steps that bring the line back, 0 when two do not."""
        for step in (1, 2):
            self.keyboard.press("Control+z")
            let_keys_arrive()
            if self.editor.saved(line, 2) == line:
                return step
        return 0

    def keep(self):
        folder = os.environ.get("TAVRELON_TABLE_FOLDER")
        if folder:
            Path(folder).mkdir(parents=True, exist_ok=True)
            (Path(folder) / self.name).write_text("\t".join(self.cells) + "\n", encoding="utf-8")


def test_row(desk):
    row = Row(desk, os.environ["TAVRELON_TEST_EDITOR"])
    editor, in_terminal = row.editor, row.editor.is_terminal
    two_lines = "one line" if in_terminal else "first ab😀\nsecond line"
    editor.refill(two_lines, "")
    row.see("value", comes(lambda: row.field()["value"] == two_lines))
    row.select_word()
    row.see("selection", comes(lambda: row.field()["selection"] == (row.word if in_terminal else "line")))
    follows = row.follows_caret()

    editor.refill("<before ", row.behind)
    set_clipboard("as it was")
    row.see("typed request", row.request("what is 42?", "what is 42?"))
    in_place = clipboard() == "as it was"

    before = row.line_with("" if in_terminal else row.word)
    editor.refill("<before " + ("" if in_terminal else row.word), row.behind)
    set_clipboard("as it was")
    row.select_word()
    row.see("selection request", row.request("", row.word))
    if editor.shown_in == "copying":
        row.cells += [COPIED, COPIED]
    else:
        row.see("by accessibility", clipboard() == "as it was")
        row.see("in place", in_place)
    row.see("caret", follows)
    steps = row.steps_back_to(before)
    row.see("undo", steps > 0, "1 step" if steps == 1 else "2 steps")
    row.keep()
    row.probe.stdin.close()
    assert row.probe.wait(20) == 0
    assert not row.surprises, f"{row.surprises}\n{row.tavrelon.written()}"
