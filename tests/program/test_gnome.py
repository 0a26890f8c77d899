"""The program in front of native windows of GNOME's shell: the main job, and whose the keys are."""

import os
import socket
import time
from pathlib import Path

import gnome
import pytest
from conftest import ends_well, history, wait_for_history
from editors import let_keys_arrive
from session import clipboard, set_clipboard
from sway import difference
from test_prompt_box import open_box
from waiting import wait_for

BY_PASTE = "chromium-accessible"  # can be read by accessibility, but not written


@pytest.mark.parametrize("kind", ["mousepad", "gnome-text-editor", BY_PASTE])
def test_a_request_and_a_selection_are_replaced(desk, kind):
    editor, tavrelon = desk.open(kind, "前文 before  after"), desk.start()
    set_clipboard("precious")
    editor.go_to("前文 before ", " after")
    desk.answers("你好 answer")
    desk.request(tavrelon, editor, "what is 42?")
    wait_for_history(tavrelon, 1)
    assert desk.service.user_messages()[0].startswith("what is 42?")
    assert editor.saved("前文 before 你好 answer after") == "前文 before 你好 answer after"
    assert clipboard() == ("你好 answer" if kind == BY_PASTE else "precious")
    desk.keyboard.press("Control+End")
    editor.select_backward(5)
    desk.answers("AFTER")
    desk.begin(tavrelon)
    desk.commit()
    wait_for_history(tavrelon, 2)
    assert editor.saved("前文 before 你好 answer AFTER") == "前文 before 你好 answer AFTER"
    assert ends_well(tavrelon)


def test_a_prompt_is_answered_where_the_user_was_writing(desk):
    editor = desk.open("mousepad")
    editor.type("before ")
    tavrelon = desk.start()
    desk.answers("你好 ANSWER")
    open_box(desk)
    editor.type("a poem")  # the keys go to the box
    let_keys_arrive()
    desk.keyboard.press("Return")
    wait_for_history(tavrelon, 1)
    assert editor.saved("before 你好 ANSWER") == "before 你好 ANSWER"


def test_the_model_sees_the_window_without_our_overlay(desk):
    editor, tavrelon = desk.open("mousepad", "what is here\n" * 8), desk.start()
    desk.answers("ANSWER")
    before = gnome.picture_of_focused_window(desk.folder / "before.png")
    desk.begin(tavrelon)
    editor.type("what is shown?")
    time.sleep(0.5)  # in which the overlay comes
    desk.commit()
    wait_for_history(tavrelon, 1)
    sent = desk.folder / "sent.jpg"
    sent.write_bytes(desk.service.pictures()[0])
    below = "[640x430+0+84]"  # the title and the first line, which has what was typed; the overlay lies there
    assert difference(f"{before}{below}", f"{sent}{below}") < 0.03


def test_escape_is_ours_while_the_model_thinks_and_no_longer(desk):
    editor, tavrelon = desk.open("mousepad"), desk.start()
    desk.answers("TOO LATE", delayMs=2000)
    desk.request(tavrelon, editor, "a question")
    wait_for("a question at the service", desk.asked, 20)
    desk.keyboard.press("Escape")
    wait_for("the end of the request on the wire", lambda: desk.asked()[0]["abandoned"], 20)
    wait_for("Escape to be the applications' again", lambda: gnome.is_free("Escape"))
    time.sleep(2.5)  # past the moment at which the answer would have come
    editor.type("!")
    assert editor.saved("a question!") == "a question!"
    assert history(tavrelon) == []


def test_what_is_taken_stays_so_and_a_crash_leaves_no_key(desk):
    with gnome.taken("<Shift><Alt><Super>g"):
        desk.open("mousepad")
        killed = desk.start()
        killed.wait_for_line(r"\[Hotkey\] Shift\+Alt\+Super\+G is another program's")
        desk.begin(killed)
        assert not gnome.is_free("Escape")
        killed.process.kill()
        killed.process.wait(10)
        wait_for("the keys to be let go", lambda: gnome.is_free("Escape") and gnome.is_free("<Shift><Alt><Super>l"))
        again = desk.start()
        desk.begin(again)
        assert ends_well(again)


def test_the_extension_serves_no_other_program():
    with socket.socket(socket.AF_UNIX) as other:
        other.settimeout(10)
        other.connect(str(Path(os.environ["XDG_RUNTIME_DIR"]) / "tavrelon-gnome-shell"))
        assert other.recv(1) == b""
