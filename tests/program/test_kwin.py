"""The program in front of native windows of KWin: the main job, and whose the keys are."""

import os
import shutil
import signal
import time

import kwin
import pytest
from conftest import ends_well, guardian_of, is_alive, kill, wait_for_history
from jobs import answer_prompt, end_by_escape, replace_request_and_selection
from programs import Program
from waiting import wait_for

SHIFT_ALT_SUPER_G, ESCAPE = 0x1A000047, "hotkey-53-0-0"
BY_PASTE = "chromium-accessible"  # can be read by accessibility, but not written


@pytest.mark.parametrize("kind", ["mousepad", "gnome-text-editor", "qt6-editor", BY_PASTE, pytest.param(
    "firefox", marks=pytest.mark.skipif(not shutil.which("firefox-esr"), reason="it is not installed"))])
def test_a_request_and_a_selection_are_replaced(desk, kind):
    editor, tavrelon = desk.open(kind, "前文 before  after"), desk.start()
    replace_request_and_selection(desk, editor, tavrelon, kind in (BY_PASTE, "firefox"))
    assert ends_well(tavrelon)
    assert "hotkey-" not in kwin.shortcuts()


@pytest.mark.parametrize("kind", ["mousepad", "lxterminal"])
def test_a_prompt_is_answered_where_the_user_was_writing(desk, kind):
    answer_prompt(desk, desk.open(kind))


def test_escape_while_the_model_thinks_ends_it_for_good(desk):
    editor, tavrelon = desk.open("mousepad"), desk.start()
    end_by_escape(desk, editor, tavrelon)
    wait_for("Escape to be the applications' again", lambda: ESCAPE not in kwin.shortcuts())


def test_the_model_sees_the_window_that_another_covers(desk):
    desk.started(Program(["display", "-title", "cover", "-size", "300x200", "xc:red"], desk.folder / "cover.log"))
    wait_for("the cover", lambda: "cover" in kwin.front_title(), 20)
    editor, tavrelon = desk.open("mousepad", "what is here\n" * 8), desk.start()
    place = kwin.cover_front_window("cover")
    screen = kwin.screen_picture(desk.folder / "screen.png", desk.build / "src/tavrelon-window-picture")
    assert kwin.share_of("red", f"{screen}[{place}]") > 0.9
    desk.answers("ANSWER")
    desk.request(tavrelon, editor, "what is shown?")
    wait_for_history(tavrelon, 1)
    sent = desk.folder / "sent.jpg"
    sent.write_bytes(desk.service.pictures()[0])
    assert kwin.share_of("red", sent) == 0
    assert kwin.share_of("white", sent) > 0.5, "the editor's page"


def test_what_is_taken_stays_so_and_what_a_crash_leaves_is_let_go(desk):
    kwin.take_shortcut(SHIFT_ALT_SUPER_G)
    editor = desk.open("mousepad")
    killed = desk.start()
    killed.wait_for_line(r"\[Hotkey\] Shift\+Alt\+Super\+G is another program's")
    desk.begin(killed)
    assert ESCAPE in kwin.shortcuts()
    kill(killed)
    wait_for("all keys to be let go", lambda: "hotkey-" not in kwin.shortcuts(), 20)
    editor.type("plain")
    assert editor.saved("plain") == "plain", "no modifier is left down"
    orphan = desk.start()
    desk.begin(orphan)
    os.kill(guardian_of(orphan), signal.SIGKILL)
    kill(orphan)
    assert ESCAPE in kwin.shortcuts(), "nobody lets go of it"
    again = desk.start()
    assert ESCAPE not in kwin.shortcuts()
    desk.begin(again)
    guardian = guardian_of(again)
    assert ends_well(again)
    wait_for("the end of the guardian", lambda: not is_alive(guardian))


def test_a_program_that_is_killed_while_it_pastes_leaves_no_key_down(desk):
    editor = desk.open(BY_PASTE)
    desk.answers("ANSWER " * 20)
    for count in range(3):
        tavrelon = desk.start()
        desk.request(tavrelon, editor, "a question of some length?")
        wait_for("the question at the service", lambda: len(desk.asked()) > count, 20)
        time.sleep(0.03 * count)
        kill(tavrelon)
        wait_for("all keys to be let go", lambda: "hotkey-" not in kwin.shortcuts(), 20)
        # With Control down these would be commands. Nothing before them may press Control, which would let go of it.
        editor.type("plain")
        wait_for("what is typed", lambda: editor.shown().endswith("plain"))
