"""The program in front of native windows of sway: the main job, and whose the keys are."""

import os
import shutil
import signal
import time
from pathlib import Path

import pytest
import sway
from accessible import FOCUSED, Windows
from conftest import HOTKEY, ends_well, guardian_of, is_alive, kill, wait_for_history
from editors import let_keys_arrive
from jobs import answer_prompt, end_by_escape, replace_request, replace_selection
from waiting import wait_for

THEIRS = "Shift+Alt+Super+g"  # as in sway.config
BY_PASTE = {"chromium-accessible", "firefox"}  # can be read by accessibility, but not written
EACH = pytest.mark.parametrize("kind", [
    "mousepad", "gnome-text-editor", "qt6-editor", "chromium-accessible",
    pytest.param("firefox", marks=pytest.mark.skipif(not shutil.which("firefox-esr"), reason="it is not installed"))])


@pytest.fixture
def theirs():
    trace = Path(os.environ["XDG_RUNTIME_DIR"]) / "theirs"
    trace.unlink(missing_ok=True)
    return trace


@EACH
def test_a_request_in_the_middle_of_a_text_is_replaced(desk, kind):
    editor, tavrelon = desk.open(kind, "前文 before  after"), desk.start()
    assert sway.focused()["app_id"], "a client of Wayland"
    replace_request(desk, editor, tavrelon, kind in BY_PASTE)
    assert ends_well(tavrelon)


@EACH
def test_a_selection_is_replaced(desk, kind):
    editor, tavrelon = desk.open(kind, "keep these words"), desk.start()
    replace_selection(desk, editor, tavrelon)
    assert desk.service.user_messages()[0].startswith("words")
    assert editor.saved("keep these WORDS") == "keep these WORDS"


def test_the_model_sees_the_window_without_our_overlay(desk):
    editor, tavrelon = desk.open("mousepad", "what is here\n" * 8), desk.start()
    before, sent = desk.folder / "before.png", desk.folder / "sent.jpg"
    sway.picture_of_focused_window(before)
    desk.answers("ANSWER")
    desk.begin(tavrelon)
    editor.type("what is shown?")
    time.sleep(0.5)  # in which the overlay comes
    covered = desk.folder / "covered.png"
    sway.picture_of_focused_window(covered)
    below = "[100x50+0+66]"  # the first line's overlay lies there, for want of room above
    assert sway.difference(f"{before}{below}", f"{covered}{below}") > 0.1
    desk.commit()
    wait_for_history(tavrelon, 1)
    sent.write_bytes(desk.service.pictures()[0])
    assert sway.difference(f"{before}{below}", f"{sent}{below}") < 0.05
    assert sway.difference(covered, sent) < 0.03, "and what was typed"


@pytest.mark.parametrize("kind", ["chromium", "foot"])
def test_what_nobody_can_see_is_no_request_and_the_field_stays(desk, kind):
    editor, tavrelon = desk.open(kind, "a long letter"), desk.start()
    desk.answers("ANSWER")
    desk.request(tavrelon, editor, "what?")
    tavrelon.wait_for_line(r"\[StateMachine\] Processing error: .*prompt box")
    assert sorted(editor.saved("")) == sorted("a long letterwhat?"), "wherever the page has put the caret"
    assert desk.service.user_messages() == []


@pytest.mark.parametrize("kind", ["mousepad", "foot"])
def test_a_prompt_is_answered_where_the_user_was_writing(desk, kind):
    answer_prompt(desk, desk.open(kind))


def test_the_first_answer_comes_into_the_field_of_the_first_page(desk):
    tavrelon, windows = desk.start(arguments=()), Windows("Tavrelon")
    while not windows.has(windows.wait_for("Try it here"), FOCUSED):
        desk.keyboard.press("Tab")
        let_keys_arrive()
    desk.keyboard.type_places("before ")
    desk.answers("forty-two\n(42)")
    desk.begin(tavrelon)
    desk.keyboard.type_places("what")
    desk.commit()
    wait_for_history(tavrelon, 1)
    assert desk.service.user_messages()[0].startswith("what")
    wait_for("the answer in the field", lambda: windows.text("Try it here") == "before forty-two\n(42)", 20)


def test_escape_while_the_model_thinks_ends_it_for_good(desk):
    editor, tavrelon = desk.open("mousepad"), desk.start()
    end_by_escape(desk, editor, tavrelon)
    pressed = sway.NextBinding()
    let_keys_arrive()
    desk.keyboard.press("Escape")
    desk.keyboard.press(THEIRS)
    assert "theirs" in pressed.command(), "Escape is the applications' again"


def test_a_combination_that_is_taken_stays_the_users(desk, theirs):
    desk.open("mousepad")
    tavrelon = desk.start()
    tavrelon.wait_for_line(r"\[Hotkey\] Shift\+Alt\+Super\+G is bound in sway's configuration")
    assert "Alt+L is bound" not in tavrelon.written(), "that is bound in a mode"
    let_keys_arrive()
    desk.keyboard.press(THEIRS)
    wait_for("what the user has bound", theirs.exists)
    sway.ask("reload")
    time.sleep(0.5)
    desk.begin(tavrelon)  # ours are bound anew


@pytest.mark.parametrize("is_guarded", [True, False])
def test_keys_are_given_back_at_the_end_and_after_a_crash(desk, theirs, is_guarded):
    desk.open("mousepad")
    # A binding that is in no configuration.
    sway.ask(f"bindsym Mod4+Mod1+Shift+l exec touch {theirs}")
    killed = desk.start()
    desk.begin(killed)
    if is_guarded:
        kill(killed)
        wait_for("the end of the record", lambda: not list(Path(os.environ["XDG_RUNTIME_DIR"]).glob("tavrelon-keys-*")), 20)
    else:  # the next start gives them back
        os.kill(guardian_of(killed), signal.SIGKILL)
        kill(killed)
        again = desk.start()
        guardian = guardian_of(again)
        assert ends_well(again)
        wait_for("the end of the guardian", lambda: not is_alive(guardian))
    pressed = sway.NextBinding()
    let_keys_arrive()
    desk.keyboard.press("Escape")
    desk.keyboard.press(HOTKEY)
    assert "theirs" in pressed.command()
    wait_for("what the user has bound", theirs.exists)
    sway.ask("unbindsym Mod4+Mod1+Shift+l")
