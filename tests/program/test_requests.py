"""Many random requests in one editor; every field must come out exactly right.

TAVRELON_TEST_EDITOR and TAVRELON_TEST_REQUESTS say where and how many, TAVRELON_TEST_SEED asks for other texts."""

import os
import random
import time
from pathlib import Path

from conftest import history
from waiting import wait_for

REST = 2.1  # seconds; an input that opened within two seconds of the last answer would be reset with it
# Pieces that one Backspace removes whole, in every toolkit.
TYPED = ["what ", "Is", "42?", "你好", "😀", "\n", "привет", "(a/b)"]
# Where the field cannot be read, what is pasted counts as not typed.
TYPED_BY_KEYS = ["what ", "Is", "42?", "(a/b)"]
ANSWERED = ["Sure. ", "世界，", "👨‍👩‍👧", "\n", "é", "🇩🇪", "  two  ", "tab\there", "ß\\n\""]
AROUND = ["text ", "more, ", "中文", "🎉", "\n"]


def some_of(dice, pieces, least, most):
    return "".join(dice.choice(pieces) for _ in range(dice.randint(least, most)))


def keep_count(done, wanted):
    """Tells where the table of applications is made how many of the requests came out right so far."""
    folder = os.environ.get("TAVRELON_TABLE_FOLDER")
    if folder:
        Path(folder).mkdir(parents=True, exist_ok=True)
        (Path(folder) / f"{os.environ['TAVRELON_TEST_EDITOR']}.requests-{wanted}").write_text(f"{done}\n", encoding="ascii")


def test_every_field_is_exactly_right(desk):
    wanted = int(os.environ["TAVRELON_TEST_REQUESTS"])
    dice = random.Random(int(os.environ.get("TAVRELON_TEST_SEED", "20261124")))
    editor = desk.open(os.environ["TAVRELON_TEST_EDITOR"])
    tavrelon = desk.start()
    keep_count(0, wanted)
    for number in range(1, wanted + 1):
        before, after = "<" + some_of(dice, AROUND, 0, 3), some_of(dice, AROUND, 0, 3) + ">"
        typed = some_of(dice, TYPED_BY_KEYS if editor.is_known_by_keys_only else TYPED, 1, 5)
        typed = typed if typed.strip() else "why"
        answer = some_of(dice, ANSWERED, 1, 8) + "."
        if editor.is_terminal:
            before, after = before.replace("\n", ""), ""
            answer = answer.replace("\t", " ").replace("\n", " ")
        desk.answers(answer)
        editor.refill(before, after)
        desk.request(tavrelon, editor, typed)
        wait_for(f"the answer to request {number}", lambda: len(history(tavrelon)) >= min(number, 20), 20)
        wait_for(f"the answer to request {number}", lambda: history(tavrelon)[0]["outputText"] == answer, 20)
        rested = time.monotonic() + REST
        wanted_text = before + answer + after
        assert editor.saved(wanted_text) == wanted_text, f"request {number}, typed {typed!r}\n{tavrelon.written()}"
        time.sleep(max(0.0, rested - time.monotonic()))
        keep_count(number, wanted)
