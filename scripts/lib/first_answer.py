"""first_answer.py BUILD OUTPUT PROGRAM: what a new user does, from the start of the program to the first answer.

A model server of this machine is found on the first page and taken by a click; then a request is typed into an editor and
its answer read there. No settings exist beforehand. BUILD has the stand-in service."""

import json
import sys
import tempfile
import time
from pathlib import Path

import screen
from dashboard import Dashboard
from programs import Editor, StandIn, Tavrelon
from waiting import Fault, wait_for

USUAL_PORT = 11434  # where the first page looks for a server
MODEL = "small-model"
REQUEST, ANSWER = "a haiku about tea", "Steam above the cup"
AT_MOST = 60  # seconds, from the start of the program; what a newcomer has patience for


def lists_one_model(service):
    """As a server that lists what it has, and says of it that it takes texts."""
    listing = {"path": "/v1/models", "body": json.dumps({"data": [{"id": MODEL}]})}
    ability = {"path": "/api/show", "body": json.dumps({"capabilities": ["completion"]})}
    service.control("reset", {})
    service.control("script", {"answers": [listing, ability] * 5, "default": {"content": ANSWER}})


def play(build, output, program):
    """The seconds that it took. A Fault where it does not come to an answer, or not in time."""
    output.mkdir(parents=True, exist_ok=True)
    page = output / "first-letter.txt"
    page.write_text("", encoding="utf-8")
    with tempfile.TemporaryDirectory(prefix="tavrelon-first.", ignore_cleanup_errors=True) as home, \
            StandIn(build / "tests/support/tavrelon-stand-in-service", output / "first-service.log", USUAL_PORT) as service:
        lists_one_model(service)
        started = time.monotonic()
        with Tavrelon(program, output / "first-tavrelon.log", home, None, arguments=()) as tavrelon:
            dashboard = Dashboard(tavrelon, keyboard=None)  # which is only read and clicked
            dashboard.wait_until_open()
            windows = dashboard.windows
            windows.wait_for(f"Use {MODEL}", "push button")
            screen.picture(output / "first-page.png")
            windows.click(f"Use {MODEL}", "push button")
            wait_for("the server in the settings", lambda: str(USUAL_PORT) in settings_of(tavrelon), 20)
            with Editor("mousepad", page, output / "first-editor.log", home) as editor:
                screen.press(screen.HOTKEY)
                tavrelon.wait_for_line(r"\[Hotkey\] Starting text listening")
                screen.type_text(REQUEST)
                screen.press(screen.HOTKEY)
                wait_for("the answer in the history", lambda: tavrelon.newest_answer() == ANSWER, AT_MOST)
                text = editor.saved_text(ANSWER)
                taken = time.monotonic() - started
                screen.picture(output / "first-answer.png")
        if not any(REQUEST in message for message in service.user_messages()):
            raise Fault("the server never heard the request")
    if text != ANSWER:
        raise Fault(f"the field holds {text!r} in place of the first answer")
    if taken > AT_MOST:
        raise Fault(f"the first answer came after {taken:.0f} s")
    return taken


def settings_of(tavrelon):
    try:
        return (tavrelon.home / "config/Tavrelon/tavrelon.settings").read_text(encoding="utf-8").replace("\\/", "/")
    except OSError:
        return ""


if __name__ == "__main__":
    try:
        print(f"first answer: {play(Path(sys.argv[1]), Path(sys.argv[2]), sys.argv[3]):.1f} s after the start")
    except Fault as fault:
        print(f"first answer: {fault}", file=sys.stderr)
        sys.exit(1)
