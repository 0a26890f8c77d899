"""Rich text in browsers, whose paragraphs are elements of their own. TAVRELON_TEST_EDITOR says in which."""

import os
import time

from conftest import history, leave_sign, wait_for_history
from editors import let_keys_arrive

FIRST, SECOND, THIRD = "First paragraph.", "Second one:", "Third, which stays."


def go_to_second_end(desk):
    for key in ("Control+Home", "Down", "End"):
        desk.keyboard.press(key)
    let_keys_arrive()


def test_a_request_in_a_paragraph_is_replaced_there_and_the_others_stay(desk):
    editor, tavrelon = desk.open(os.environ["TAVRELON_TEST_EDITOR"], "\n".join([FIRST, SECOND, THIRD])), desk.start()
    go_to_second_end(desk)
    desk.answers("ANSWER 你好")
    desk.request(tavrelon, editor, "what is 42?")
    wait_for_history(tavrelon, 1)
    assert desk.service.user_messages()[0].startswith("what is 42?")
    assert "\ufffc" not in history(tavrelon)[0]["inputText"]
    wanted = "\n".join([FIRST, SECOND + "ANSWER 你好", THIRD])
    assert editor.saved(wanted) == wanted

    time.sleep(2.3)
    go_to_second_end(desk)
    editor.select_backward(2)
    let_keys_arrive()
    desk.answers("世界")
    desk.request(tavrelon, editor, "")
    wait_for_history(tavrelon, 2)
    assert history(tavrelon)[0]["inputText"] == "你好"
    wanted = wanted.replace("你好", "世界")
    assert editor.saved(wanted) == wanted


def test_a_selection_over_several_paragraphs_is_read_and_replaced_whole(desk):
    editor, tavrelon = desk.open(os.environ["TAVRELON_TEST_EDITOR"], "\n".join([FIRST, SECOND, THIRD])), desk.start()
    for key in ("Control+Home", *["Right"] * 6, "Shift+Control+End"):
        desk.keyboard.press(key)
    let_keys_arrive()
    desk.answers("ANSWER")
    desk.request(tavrelon, editor, "")
    wait_for_history(tavrelon, 1)
    assert history(tavrelon)[0]["inputText"].split() == f"{FIRST[6:]} {SECOND} {THIRD}".split()
    assert editor.saved("First ANSWER").replace("\xa0", " ") == "First ANSWER"
    leave_sign("rich-" + os.environ["TAVRELON_TEST_EDITOR"])
