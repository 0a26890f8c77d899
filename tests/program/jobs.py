"""What every session has to do alike: each job is carried out in an editor that was opened for it, and checked there."""

import time

from conftest import history, wait_for_history
from editors import let_keys_arrive
from session import clipboard, set_clipboard
from test_prompt_box import open_box
from waiting import wait_for


def replace_request(desk, editor, tavrelon, pastes):
    """In an editor with "前文 before  after"; it `pastes` what accessibility cannot write."""
    set_clipboard("precious")
    editor.go_to("前文 before ", " after")
    desk.answers("你好 answer")
    desk.request(tavrelon, editor, "what is 42?")
    wait_for_history(tavrelon, 1)
    assert desk.service.user_messages()[0].startswith("what is 42?")
    assert editor.saved("前文 before 你好 answer after") == "前文 before 你好 answer after"
    assert clipboard() == ("你好 answer" if pastes else "precious")


def replace_selection(desk, editor, tavrelon, entries=1):
    """The last five letters."""
    desk.keyboard.press("Control+End")
    editor.select_backward(5)
    desk.answers("WORDS")
    desk.begin(tavrelon)
    desk.commit()
    wait_for_history(tavrelon, entries)


def replace_request_and_selection(desk, editor, tavrelon, pastes):
    replace_request(desk, editor, tavrelon, pastes)
    replace_selection(desk, editor, tavrelon, 2)
    assert editor.saved("前文 before 你好 answer WORDS") == "前文 before 你好 answer WORDS"


def end_by_escape(desk, editor, tavrelon):
    """While the model thinks: the request ends on the wire, and nothing comes afterwards."""
    desk.answers("TOO LATE", delayMs=2000)
    desk.request(tavrelon, editor, "a question")
    wait_for("a question at the service", desk.asked, 20)
    desk.keyboard.press("Escape")
    wait_for("the end of the request on the wire", lambda: desk.asked()[0]["abandoned"], 20)
    time.sleep(2.5)  # past the moment at which the answer would have come
    editor.type("!")
    assert editor.saved("a question!") == "a question!"
    assert history(tavrelon) == []


def answer_prompt(desk, editor):
    editor.type("before ")
    tavrelon = desk.start()
    desk.answers("你好 ANSWER")
    open_box(desk)
    editor.type("a poem")  # the keys go to the box
    let_keys_arrive()
    desk.keyboard.press("Return")
    wait_for_history(tavrelon, 1)
    assert editor.saved("before 你好 ANSWER") == "before 你好 ANSWER"
