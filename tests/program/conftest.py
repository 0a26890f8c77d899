"""The desk of the tests that start the program itself: who sits at it, and what runs on it."""

import json
import os
import subprocess
import sys
import time
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "scripts/lib"), str(Path(__file__).parent)]

from editors import Application, let_keys_arrive  # noqa: E402
import session  # noqa: E402
from programs import StandIn, Tavrelon  # noqa: E402
from waiting import wait_for  # noqa: E402

HOTKEY = "Shift+Alt+Super+l"


class Desk:
    """A person at the keyboard, a model service, and the programs that a test starts; they end with it."""

    def __init__(self, folder):
        self.build = Path(os.environ["TAVRELON_BUILD"])
        self.executable = self.build / "src/tavrelon"
        self.folder, self.keyboard, self.running = folder, session.keyboard(), []
        self.service = self.started(StandIn(self.build / "tests/support/tavrelon-stand-in-service", folder / "service.log"))

    def started(self, program):
        self.running.append(program)
        return program

    def folder_named(self, name):
        folder = self.folder / f"{name}-{len(self.running)}"
        folder.mkdir()
        return folder

    def open(self, kind, text="", environment=None):
        return self.started(Application(kind, self.keyboard, self.build, self.folder_named(kind), text, environment))

    def start(self, settings=None, environment=None, prepare=None, arguments=("--background",)):
        home = self.folder_named("home")
        if prepare:
            prepare(home)
        tavrelon = Tavrelon(self.executable, home / "log", home, self.service.port, settings, environment,
                            arguments)
        self.started(tavrelon).wait_until_live()
        return tavrelon

    def close(self):
        for program in reversed(self.running):
            program.stop()

    # What a person does

    def answers(self, text, **rest):
        self.service.answer_with({"content": text, **rest})

    def asked(self):
        return [request for request in self.service.control("requests") if request["path"] != "/control/requests"]

    def begin(self, tavrelon, chord=HOTKEY):
        mark = len(tavrelon.written())
        let_keys_arrive()
        self.keyboard.press(chord)
        tavrelon.wait_for_line(r"\[Hotkey\] Starting text listening", mark, 20)

    def commit(self, chord=HOTKEY):
        let_keys_arrive()
        self.keyboard.press(chord)

    def request(self, tavrelon, application, text):
        self.begin(tavrelon)
        application.type(text)
        self.commit()


def history(tavrelon):
    return tavrelon.stored()


def wait_for_history(tavrelon, count):
    wait_for(f"{count} entries of history", lambda: len(history(tavrelon)) == count, 20)


def settings_of(tavrelon):
    return json.loads((tavrelon.home / "config/Tavrelon/tavrelon.settings").read_text(encoding="utf-8"))


def ends_well(tavrelon):
    """Ends it as a logout would; it must go in order and time, and its views must have complained of nothing."""
    tavrelon.process.terminate()
    assert tavrelon.process.wait(20) == 0, tavrelon.written()[-6000:]
    assert "[UI]" not in tavrelon.written()
    return True


def guardian_of(tavrelon):
    """The process that gives the keys back if the program cannot."""
    told = subprocess.run(["pgrep", "-x", "-P", str(tavrelon.process.pid), "key-guardian"], stdin=subprocess.DEVNULL,
                          capture_output=True, text=True, timeout=20).stdout
    return int(told)


def is_alive(process):
    """One that has ended and that nobody has asked for yet is not."""
    try:
        return Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0] != "Z"
    except FileNotFoundError:
        return False


def kill(tavrelon):
    tavrelon.process.kill()
    tavrelon.process.wait(10)


def leave_sign(name):
    """Tells where the table of applications is made that this was seen."""
    folder = os.environ.get("TAVRELON_TABLE_FOLDER")
    if folder:
        Path(folder).mkdir(parents=True, exist_ok=True)
        (Path(folder) / name).touch()


@pytest.fixture
def desk(tmp_path):
    made = Desk(tmp_path)
    try:
        yield made
        time.sleep(0.1)
    finally:
        made.close()
