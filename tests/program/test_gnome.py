"""The program in front of native windows of GNOME's shell: the main job, and whose the keys are."""

import os
import socket
import time
from pathlib import Path

import gnome
import pytest
from conftest import ends_well, wait_for_history
from jobs import answer_prompt, end_by_escape, replace_request_and_selection
from sway import difference
from waiting import wait_for

BY_PASTE = "chromium-accessible"  # can be read by accessibility, but not written


@pytest.mark.parametrize("kind", ["mousepad", "gnome-text-editor", BY_PASTE])
def test_a_request_and_a_selection_are_replaced(desk, kind):
    editor, tavrelon = desk.open(kind, "前文 before  after"), desk.start()
    replace_request_and_selection(desk, editor, tavrelon, kind == BY_PASTE)
    assert ends_well(tavrelon)


def test_a_prompt_is_answered_where_the_user_was_writing(desk):
    answer_prompt(desk, desk.open("mousepad"))


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
    end_by_escape(desk, editor, tavrelon)
    wait_for("Escape to be the applications' again", lambda: gnome.is_free("Escape"))


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
