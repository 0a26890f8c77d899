"""The program itself in front of real editors: what happens when things go other than smoothly."""

import signal
import time

import pytest
import screen
from conftest import ends_well, wait_for_history
from editors import let_keys_arrive
from jobs import end_by_escape
from programs import StandIn
from waiting import wait_for

BOTH = pytest.mark.parametrize("kind", ["mousepad", "featherpad"])


@BOTH
def test_escape_while_the_model_thinks_ends_it_for_good(desk, kind):
    editor, tavrelon = desk.open(kind), desk.start()
    end_by_escape(desk, editor, tavrelon)
    assert ends_well(tavrelon)


@BOTH
def test_held_modifiers_neither_disturb_the_write_nor_stick(desk, kind):
    editor, tavrelon = desk.open(kind, "before "), desk.start()
    desk.keyboard.press("Control+End")
    desk.answers("你好 answer")
    desk.begin(tavrelon)
    editor.type("hi")
    let_keys_arrive()
    with desk.keyboard.holding("Shift"), desk.keyboard.holding("Alt"), desk.keyboard.holding("Super"):
        desk.keyboard.press("l")
        wait_for_history(tavrelon, 1)
    wait_for("no key held", lambda: not desk.keyboard.held() and not desk.keyboard.modifiers())
    editor.type(" x")
    assert editor.saved("before 你好 answer x") == "before 你好 answer x"


@BOTH
def test_a_model_that_fails_leaves_the_field_alone(desk, kind):
    editor, tavrelon = desk.open(kind), desk.start()
    desk.service.answer_with({"status": 500, "body": "broken"})
    mark = len(tavrelon.written())
    desk.request(tavrelon, editor, "question")
    tavrelon.wait_for_line(r"\[StateMachine\] Processing error: Generation failed: ", mark, 60)
    assert editor.saved("question") == "question"


@BOTH
def test_requests_in_the_middle_of_a_long_document_leave_the_rest_of_it_alone(desk, kind):
    lines = [f"line {number:4} of a document far over 20 000 characters" for number in range(800)]
    editor, tavrelon = desk.open(kind, "\n".join(lines)), desk.start()
    for done in (1, 2):
        for _ in range(150):
            desk.keyboard.press("Down")
        desk.answers("ANSWER")
        desk.request(tavrelon, editor, "a question")
        wait_for_history(tavrelon, done)
        lines[150 * done] = "ANSWER" + lines[150 * done]
        desk.keyboard.press("Home")
    wanted = "\n".join(lines)
    assert editor.saved(wanted) == wanted


def test_a_stopped_editor_does_not_take_the_keyboard_with_it(desk):
    bystander, hung = desk.open("featherpad"), desk.open("mousepad", "text")
    tavrelon = desk.start()
    hung.signal(signal.SIGSTOP)
    started = time.monotonic()
    desk.begin(tavrelon)
    desk.keyboard.press("Escape")
    assert time.monotonic() - started < 5
    screen.run("xdotool", "search", "--onlyvisible", "--class", "featherpad", "windowactivate", "--sync")
    bystander.type("alive")
    assert bystander.saved("alive") == "alive"
    desk.answers("ANSWER")
    desk.request(tavrelon, bystander, "and well")
    wait_for_history(tavrelon, 1)
    assert bystander.saved("aliveANSWER") == "aliveANSWER"


def test_another_program_can_do_what_the_hotkeys_do(desk):
    editor = desk.open("mousepad")
    tavrelon = desk.start(settings={"hotkeysEnabled": False})
    desk.answers("ANSWER")
    let_keys_arrive()
    assert tavrelon.trigger("text") == 0
    tavrelon.wait_for_line(r"\[Hotkey\] Starting text listening")
    editor.type("what is 42?")
    assert tavrelon.trigger("text") == 0
    wait_for_history(tavrelon, 1)
    assert editor.saved("ANSWER") == "ANSWER"
    assert tavrelon.trigger("nonsense") == 64
    assert ends_well(tavrelon)
    assert tavrelon.trigger("text") == 69, "nobody is there to hear it"


def test_when_the_users_own_server_is_gone_nothing_goes_anywhere_else(desk):
    elsewhere = desk.started(StandIn(desk.build / "tests/support/tavrelon-stand-in-service", desk.folder / "elsewhere.log"))
    proxy = f"http://127.0.0.1:{elsewhere.port}"
    editor = desk.open("mousepad")
    tavrelon = desk.start(environment={"http_proxy": proxy, "https_proxy": proxy, "no_proxy": ""})
    desk.service.stop()
    for typed in ("what is 42?", "draw a cat"):
        mark = len(tavrelon.written())
        desk.request(tavrelon, editor, typed)
        tavrelon.wait_for_line(r"\[StateMachine\] Processing error: Generation failed: Could not connect to 127", mark, 60)
        time.sleep(2.3)
    assert [r for r in elsewhere.control("requests") if not r["path"].startswith("/control")] == []
