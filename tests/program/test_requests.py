"""Many random requests in one editor; every field must come out exactly right.

Some are made in long fields, some after the caret was moved, and of some the answer finds another window in front, or
what the user has written meanwhile. TAVRELON_TEST_EDITOR and TAVRELON_TEST_REQUESTS say where and how many,
TAVRELON_TEST_SEED asks for other texts. With TAVRELON_TEST_INPUT_METHOD=pinyin requests are composed."""

import os
import random
import time
from pathlib import Path

from conftest import history
from editors import let_keys_arrive
from input_methods import ENVIRONMENT, HALF_WORDS, WORDS, Pinyin
from programs import Program
from session import bring_to_front, clipboard, front_title, front_window, is_wayland
from waiting import Fault, wait_for

REST = 2.1  # seconds; an input that opened within two seconds of the last answer would be reset with it
UNDERWAY = 900  # milliseconds that an answer takes while something happens
# Pieces that one Backspace removes whole, in every toolkit.
TYPED = ["what ", "Is", "42?", "你好", "😀", "\n", "привет", "(a/b)"]
# Where the field cannot be read, what is pasted counts as not typed.
TYPED_BY_KEYS = ["what ", "Is", "42?", "(a/b)"]
ANSWERED = ["Sure. ", "世界，", "👨‍👩‍👧", "\n", "é", "🇩🇪", "  two  ", "tab\there", "ß\\n\""]
AROUND = ["text ", "more, ", "中文", "🎉", "\n"]
# What an answer finds where the user has written on behind the request: it takes the request's place where the field
# can be edited by accessibility, and goes to the caret where it can only be read.
EDITED_IN_PLACE = {"mousepad", "gnome-text-editor", "featherpad", "qt6-editor"}
READ_ONLY = {"chromium-accessible"}


def some_of(dice, pieces, least, most):
    return "".join(dice.choice(pieces) for _ in range(dice.randint(least, most)))


def keep_count(done, wanted):
    """Tells where the table of applications is made how many of the requests came out right so far."""
    folder = os.environ.get("TAVRELON_TABLE_FOLDER")
    if folder:
        Path(folder).mkdir(parents=True, exist_ok=True)
        method = os.environ.get("TAVRELON_TEST_INPUT_METHOD")
        name = os.environ["TAVRELON_TEST_EDITOR"] + (f"-{method}" if method else "")
        (Path(folder) / f"{name}.requests-{wanted}").write_text(f"{done}\n", encoding="ascii")


class RandomRequests:
    def __init__(self, desk, dice):
        self.desk, self.dice = desk, dice
        self.editor = self.open_editor()
        if self.editor.kind == "falkon":
            # Its engine takes a key twice that overtakes its modifier, also a person's, where the machine is busy.
            desk.keyboard.after_modifier = 0.12
        self.tavrelon = desk.start()
        self.rested = 0.0
        self.done = 0

    def texts(self):
        """What stands before and behind the caret, what is asked and what is answered."""
        dice, editor = self.dice, self.editor
        before, after = "<" + some_of(dice, AROUND, 0, 3), some_of(dice, AROUND, 0, 3) + ">"
        typed = some_of(dice, TYPED_BY_KEYS if editor.is_known_by_keys_only else TYPED, 1, 5)
        typed = typed if typed.strip() else "why"
        answer = some_of(dice, ANSWERED, 1, 8) + "."
        if editor.is_terminal:
            before, after = before.replace("\n", ""), ""
            answer = answer.replace("\t", " ").replace("\n", " ")
        return before, after, typed, answer

    def open_editor(self):
        return self.desk.open(os.environ["TAVRELON_TEST_EDITOR"])

    def write(self, typed):
        self.editor.type(typed)

    def write_meanwhile(self):
        """What the user goes on to write, at the end of all."""
        self.desk.keyboard.press("Control+End")
        self.editor.note_at_end("Zz")
        for letter in ("Shift+z", "z"):
            self.desk.keyboard.press(letter)
        return "Zz"

    def ask(self, typed, answer, **delay):
        self.desk.answers(answer, **delay)
        self.desk.begin(self.tavrelon)
        self.write(typed)
        self.desk.commit()

    def answered(self, answer, asked=None):
        self.done += 1
        count = min(self.done, 20)
        try:
            wait_for("the answer", lambda: len(history(self.tavrelon)) >= count and
                     history(self.tavrelon)[0]["outputText"] == answer, 20)
        except Fault as fault:
            raise Fault(f"{fault}\n{self.tavrelon.written()[-6000:]}") from fault
        if asked is not None:
            assert history(self.tavrelon)[0]["inputText"].split() == asked.split(), self.tavrelon.written()[-6000:]
        self.rested = time.monotonic() + REST

    def holds(self, wanted):
        assert self.editor.saved(wanted) == wanted, self.tavrelon.written()[-6000:]

    # The ways

    def plain(self):
        before, after, typed, answer = self.texts()
        self.editor.refill(before, after)
        self.ask(typed, answer)
        self.answered(answer, typed)
        self.holds(before + answer + after)

    def in_a_long_field(self):
        """Of 15 000 to 40 000 characters, near its begin or its end; now and then the input is opened at the other one."""
        before, after, typed, answer = self.texts()
        words = "".join(self.dice.choice(["lorem ", "ipsum, ", "中文", "dolor\n"]) for _ in range(self.dice.randint(3500, 8000)))
        is_near_end, is_moved = self.dice.random() < 0.5, self.dice.random() < 0.5
        before, after = (words + before, after) if is_near_end else (before, after + words)
        go_there = self.editor.go_to_end if is_near_end else self.editor.go_to
        self.editor.refill(before + after, "")
        if is_moved and is_near_end:
            self.editor.go_to("", before + after)
        elif not is_moved:
            go_there(before, after)
        self.desk.answers(answer)
        self.desk.begin(self.tavrelon)
        if is_moved:
            go_there(before, after)
        self.write(typed)
        self.desk.commit()
        self.answered(answer, typed)
        self.holds(before + answer + after)

    def with_a_moved_caret(self):
        """The input is opened at one place, and what is asked is typed at another."""
        before, after, typed, answer = self.texts()
        self.editor.refill(before, after)
        self.desk.answers(answer)
        self.desk.begin(self.tavrelon)
        self.editor.go_to("", before + after)
        self.write(typed)
        self.desk.commit()
        self.answered(answer, typed)
        self.holds(answer + before + after)

    def with_words_written_meanwhile(self):
        before, after, typed, answer = self.texts()
        self.editor.refill(before, after)
        self.ask(typed, answer, delayMs=UNDERWAY)
        wait_for("the question at the service", self.desk.asked, 20)
        written = self.write_meanwhile()
        self.answered(answer, typed)
        self.holds(before + answer + after + written if self.editor.kind in EDITED_IN_PLACE
                   else before + typed + after + written + answer)

    def with_another_window_in_front(self):
        before, after, typed, answer = self.texts()
        self.editor.refill(before, after)
        mine = front_window()
        self.ask(typed, answer, delayMs=UNDERWAY)
        folder = self.desk.folder_named("other")
        other = self.desk.started(Program(["xterm", "-T", "another", "-e", "sh", "-c", f"cat >'{folder}/got'"],
                                          folder / "log"))
        wait_for("the other window", lambda: front_title() == "another", 20)
        self.answered(answer, typed)
        wait_for("the answer on the clipboard", lambda: clipboard() == answer, 20)
        self.desk.keyboard.press("Return")
        let_keys_arrive()
        assert (folder / "got").read_bytes() == b"\n", "the other window is untouched"
        other.stop()
        bring_to_front(mine)
        self.holds(before + typed + after)

    def ways(self):
        ways = [self.plain] * 3 + [self.with_another_window_in_front]
        if not self.editor.is_terminal:
            ways.append(self.with_a_moved_caret)
        if self.editor.kind in EDITED_IN_PLACE | READ_ONLY:
            ways.append(self.with_words_written_meanwhile)
        if self.editor.kind in EDITED_IN_PLACE:  # a browser's title is cut
            ways.append(self.in_a_long_field)
        return ways


class ComposedRequests(RandomRequests):
    """Written with an input method, now and then with a word half composed at the second press."""

    def open_editor(self):
        pinyin = self.desk.started(Pinyin(self.desk.folder / "fcitx.log"))
        editor = self.desk.open(os.environ["TAVRELON_TEST_EDITOR"], environment=ENVIRONMENT)
        pinyin.wait_until_on()
        return editor

    def texts(self):
        before, after, _, answer = super().texts()
        self.words = [self.dice.choice(WORDS) for _ in range(self.dice.randint(1, 4))] + [self.dice.choice(WORDS[:4])]
        return before, after, "".join(text for _, text in self.words), answer

    def write(self, typed):
        self.editor.compose(self.words)

    def write_meanwhile(self):
        self.desk.keyboard.press("Control+End")
        self.editor.note_at_end("你好")
        self.editor.strike("nihao ")
        return "你好"

    def seen(self, typed):
        """What is asked where a half word is left behind it; browsers show that in the field like the rest."""
        return typed if self.editor.kind not in READ_ONLY else None

    def with_a_half_word(self):
        """It is not left in the field."""
        before, after, typed, answer = self.texts()
        self.editor.refill(before, after)
        self.desk.answers(answer, delayMs=UNDERWAY)
        self.desk.begin(self.tavrelon)
        self.write(typed)
        self.editor.strike(self.dice.choice(HALF_WORDS))
        self.desk.commit()
        self.answered(answer, self.seen(typed))
        self.holds(before + answer + after)

    def with_letters_alone(self):
        """They are waited for; what is asked then is a guess at best, but none of the field's text is lost."""
        before, after, _, answer = self.texts()
        self.editor.refill(before, after)
        self.desk.answers(answer)
        self.desk.begin(self.tavrelon)
        self.editor.strike(self.dice.choice(HALF_WORDS))
        self.desk.commit()
        self.answered(answer)
        self.holds(before + answer + after)

    def with_a_word_committed_behind_the_hotkey(self):
        before, after, _, answer = self.texts()
        strokes, typed = WORDS[0]
        self.editor.refill(before, after)
        self.desk.answers(answer)
        self.desk.begin(self.tavrelon)
        self.editor.strike(strokes[:-1])
        self.desk.commit()
        self.editor.strike(strokes[-1])
        self.answered(answer, typed)
        self.holds(before + answer + after)

    def with_a_word_committed_meanwhile(self):
        """Of which a part was composed at the second press: it stays, since it was not asked."""
        before, after, typed, answer = self.texts()
        self.editor.refill(before, after)
        self.desk.answers(answer, delayMs=UNDERWAY)
        self.desk.begin(self.tavrelon)
        self.write(typed)
        self.editor.strike("zhong")
        self.desk.commit()
        wait_for("the question at the service", self.desk.asked, 20)
        self.editor.strike("guo ")
        self.answered(answer, self.seen(typed))
        self.holds(before + answer + "中国" + after if self.editor.kind in EDITED_IN_PLACE
                   else before + typed + "中国" + answer + after)

    def ways(self):
        ways = [*super().ways(), self.with_a_word_committed_behind_the_hotkey, self.with_a_word_committed_meanwhile]
        if not is_wayland():  # there nobody tells that a word is open, and it stays so
            ways += [self.with_a_half_word] * 2 + [self.with_letters_alone]
        return ways


WRITERS = {"": RandomRequests, "pinyin": ComposedRequests}


def test_every_field_is_exactly_right(desk):
    wanted = int(os.environ["TAVRELON_TEST_REQUESTS"])
    dice = random.Random(int(os.environ.get("TAVRELON_TEST_SEED", "20261124")))
    requests = WRITERS[os.environ.get("TAVRELON_TEST_INPUT_METHOD", "")](desk, dice)
    keep_count(0, wanted)
    ways = requests.ways()
    for number in range(1, wanted + 1):
        way = dice.choice(ways)
        print(f"request {number}: {way.__name__}")
        way()
        time.sleep(max(0.0, requests.rested - time.monotonic()))
        keep_count(number, wanted)
