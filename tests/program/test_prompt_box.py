"""The prompt box of the program itself, over real editors."""

import pytest
from conftest import ends_well, wait_for_history
from editors import let_keys_arrive
from session import front_title
from waiting import wait_for

KINDS = pytest.mark.parametrize("kind", ["mousepad", "featherpad", "xterm"])


def open_box(desk):
    let_keys_arrive()
    desk.keyboard.press("`")
    wait_for("the prompt box", lambda: front_title() == "Tavrelon", 20)
    let_keys_arrive()


@KINDS
def test_a_prompt_is_answered_where_the_user_was_writing(desk, kind):
    editor = desk.open(kind)
    editor.type("before ")
    tavrelon = desk.start()
    desk.answers("ANSWER")
    open_box(desk)
    editor.type("a poem")  # the keys go to the box
    let_keys_arrive()
    desk.keyboard.press("Return")
    wait_for("the editor in front", lambda: "field.txt" in front_title(), 20)
    wait_for_history(tavrelon, 1)
    assert editor.saved("before ANSWER") == "before ANSWER"
    assert ends_well(tavrelon)


@KINDS
def test_escape_gives_the_keyboard_back_and_asks_nobody(desk, kind):
    editor, tavrelon = desk.open(kind), desk.start()
    open_box(desk)
    desk.keyboard.press("a")
    desk.keyboard.press("Escape")
    wait_for("the editor in front", lambda: "field.txt" in front_title(), 20)
    editor.type("on")
    assert editor.saved("on") == "on"
    assert desk.asked() == []
    assert ends_well(tavrelon)
