"""The program itself where it must keep its hands off: password fields, windows that came in between, and terminals."""

import re
import shutil
import time

import pytest
import screen
from conftest import history, leave_sign, wait_for_history
from editors import CHROMIUM, KINDS, let_keys_arrive
from programs import Program
from session import clipboard, front_title, set_clipboard
from waiting import wait_for

CANARY = "hunter2"
# A page's title tells how much its field holds.
PAGE = """<!DOCTYPE html><title>password</title><input type=password autofocus
oninput="document.title='password '+this.value.length">"""


class Guarded:
    """The program, started first so that applications find accessibility switched on, and a password field."""

    def __init__(self, desk):
        self.desk, self.tavrelon = desk, desk.start()
        self.held = desk.folder / "field"

    def open_password_field(self, toolkit):
        command = [str(self.desk.build / "tools/stage/tavrelon-password-field"), toolkit, str(self.held)]
        browsers = {"chromium": [*CHROMIUM[:1], "--force-renderer-accessibility", *CHROMIUM[1:]],
                    "firefox": KINDS["firefox"][0]}
        if toolkit in browsers:
            folder = self.desk.folder_named("page")
            (folder / "profile").mkdir()
            (folder / "page.html").write_text(PAGE, encoding="utf-8")
            command = [part.format(folder=folder) for part in browsers[toolkit]]
        self.desk.started(Program(command, self.desk.folder_named("log") / "log", {"GSK_RENDERER": "cairo"}))
        wait_for("the password field", lambda: re.match("password", front_title()), 60)
        time.sleep(1.5)  # in which it joins the bus

    def type_canary(self):
        let_keys_arrive()
        screen.type_text(CANARY)
        let_keys_arrive()

    def bring_to_front(self, title):
        def comes():
            screen.run("xdotool", "search", "--onlyvisible", "--name", title, "windowactivate", "--sync")
            return re.search(title, front_title())
        wait_for(f"'{title}' in front", comes, 20, pause=0.3)
        let_keys_arrive()

    def holds_the_canary_alone(self):
        return self.field() == CANARY or front_title().startswith(f"password {len(CANARY)}")

    def field(self):
        return self.held.read_text() if self.held.exists() else ""

    def wait_for_line(self, text, times=1):
        wait_for(f"'{text}' in the log", lambda: self.tavrelon.written().count(text) >= times, 20)

    def expect_canary_nowhere(self):
        """In nothing that left, that is stored, logged or copied."""
        assert CANARY not in str(self.desk.asked())
        for path in self.tavrelon.home.rglob("*"):
            assert not path.is_file() or CANARY.encode() not in path.read_bytes(), path
        assert CANARY not in clipboard()


@pytest.fixture
def guarded(desk):
    return Guarded(desk)


@pytest.mark.parametrize("toolkit", ["gtk3", "gtk4", "qt", "chromium", pytest.param("firefox", marks=pytest.mark.skipif(
    not shutil.which("firefox-esr"), reason="it is not installed"))])
def test_no_input_starts_in_a_password_field_and_its_keys_go_nowhere(desk, guarded, toolkit):
    guarded.open_password_field(toolkit)
    set_clipboard("kept")
    desk.answers("ANSWER")
    desk.commit()
    guarded.wait_for_line("[StateMachine] Password field")
    guarded.type_canary()
    desk.commit()
    guarded.wait_for_line("[StateMachine] Password field", 2)
    time.sleep(1.5)
    assert guarded.holds_the_canary_alone()
    assert clipboard() == "kept"
    assert desk.asked() == [] and history(guarded.tavrelon) == []
    guarded.expect_canary_nowhere()


def test_an_input_that_is_open_ends_when_a_password_field_gets_the_focus(desk, guarded):
    guarded.open_password_field("gtk3")
    terminal = desk.open("xterm")
    desk.begin(guarded.tavrelon)
    terminal.type("a question")
    guarded.bring_to_front("^password$")
    # Whichever is noticed first: that the window was left, or what kind of field came.
    guarded.tavrelon.wait_for_line(r"\[StateMachine\] (Password field|The input is forgotten)", seconds=20)
    guarded.type_canary()
    guarded.bring_to_front("field.txt")
    desk.commit()
    time.sleep(2)
    assert guarded.field() == CANARY
    guarded.expect_canary_nowhere()


def test_an_answer_that_finds_a_password_field_in_front_changes_nothing(desk, guarded):
    editor = desk.open("mousepad")
    desk.answers("ANSWER", delayMs=6000)
    desk.request(guarded.tavrelon, editor, "a question")
    wait_for("the question at the service", desk.asked, 20)
    guarded.open_password_field("gtk3")
    guarded.type_canary()
    guarded.wait_for_line("Answer is on the clipboard")
    time.sleep(1)
    assert guarded.field() == CANARY
    assert clipboard() == "ANSWER"
    assert len(history(guarded.tavrelon)) == 1
    guarded.expect_canary_nowhere()
    guarded.bring_to_front("field.txt")
    assert editor.saved("a question") == "a question"


@pytest.mark.parametrize("kind", ["xterm", "lxterminal"])
def test_one_line_goes_into_a_terminal_without_its_end_and_several_stay_on_the_clipboard(desk, guarded, kind):
    terminal = desk.open(kind)

    def request(answer, count):
        desk.answers(answer)
        desk.request(guarded.tavrelon, terminal, "question")
        wait_for_history(guarded.tavrelon, count)
        time.sleep(2.5)

    request("touch one\n", 1)
    assert terminal.shown() == "", "the line was not ended"
    assert terminal.saved("touch one") == "touch one"
    terminal.refill("", "")
    request("one\ntwo", 2)
    guarded.wait_for_line("Answer is on the clipboard")
    assert clipboard() == "one\ntwo"
    assert terminal.saved("question") == "question"


def test_a_public_service_gets_nothing_before_the_user_has_said_yes(desk):
    # The stand-in service answers in the place of a host that is no neighbour, as the proxy on the way there.
    proxy = {"http_proxy": f"http://127.0.0.1:{desk.service.port}"}
    settings = {"pollinationsBaseURL": "http://models.example", "screenshotMode": "none"}
    tavrelon = desk.start(settings, proxy)
    editor = desk.open("mousepad")
    desk.answers("ANSWER")
    allowed = tavrelon.home / "config/Tavrelon/tavrelon.allowedServices"

    def ask():
        desk.request(tavrelon, editor, "a question")
        time.sleep(3)  # in which the overlay asks, and the user reads

    ask()
    assert desk.asked() == []
    desk.keyboard.press("Escape")
    time.sleep(1)
    assert desk.asked() == [] and not allowed.exists()
    assert editor.saved("a question") == "a question"
    editor.refill("Asked: ", "")
    ask()
    desk.commit()
    wait_for_history(tavrelon, 1)
    assert len(desk.asked()) == 1
    assert allowed.read_text() == "text http://models.example:80"
    assert editor.saved("Asked: ANSWER") == "Asked: ANSWER"


@pytest.mark.skipif(not shutil.which("emacs"), reason="it is not installed")
def test_an_editor_with_chords_of_its_own_gets_the_answer_by_them(desk):
    tavrelon = desk.start()
    editor = desk.open("emacs", "Asked: ")
    desk.answers("one\ntwo")
    desk.request(tavrelon, editor, "question")
    wait_for_history(tavrelon, 1)
    assert editor.saved("Asked: one\ntwo").rstrip("\n") == "Asked: one\ntwo"
    leave_sign("special-emacs")


@pytest.mark.skipif(not shutil.which("gvim"), reason="not installed")
def test_where_no_key_is_known_that_pastes_the_request_stays_and_the_answer_is_on_the_clipboard(desk):
    editor, guarded = desk.open("gvim"), Guarded(desk)
    desk.answers("AN ANSWER")
    desk.request(guarded.tavrelon, editor, "what is 42?")
    guarded.wait_for_line("Answer is on the clipboard")
    assert clipboard() == "AN ANSWER"
    assert editor.saved("what is 42?") == "what is 42?"
    leave_sign("special-gvim")


@pytest.mark.parametrize("kind", ["chromium", "xterm"])  # the one fetches the clipboard, the other the primary selection
def test_the_users_clipboard_comes_back_once_the_answer_was_pasted_where_that_is_wanted(desk, kind):
    editor, tavrelon = desk.open(kind), desk.start(settings={"keepClipboard": True})
    set_clipboard("as it was")
    desk.answers("ANSWER")
    desk.request(tavrelon, editor, "what is 42?")
    assert editor.saved("ANSWER") == "ANSWER"
    wait_for("the clipboard as it was", lambda: clipboard() == "as it was", 10)
