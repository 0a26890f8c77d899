"""package_session.py BUILD OUTPUT PROGRAM UPGRADE: works with an installed program as a user's session does.

A new user's first answer; the demonstration; every page of the dashboard; then UPGRADE, a command that installs a newer package while the program
runs, and a request to the running program and to the new one. BUILD has the stand-in service."""

import os
import re
import subprocess
import tempfile
import time
from pathlib import Path

import demo_pictures
import first_answer
import screen
from demo import Stage, play_all, show
from demo_cases import CASES
from programs import StandIn, Tavrelon
from waiting import Fault, run, wait_for

PAGES = {"settings": 135, "hotkeys": 189, "clone": 243, "providers": 297, "history": 351, "permissions": 405}
SIDEBAR = 44  # pixels from the left edge to the middle of the page's button; the numbers above are from the top
MISSING = re.compile(r"is not installed|[Cc](ould|an) ?not (load|find|open)|\[UI\]|^qt\.|plugin|symbol lookup")


def dashboard():
    """Its window; overlays bear the program's name too, and are smaller."""
    found = screen.run("xdotool", "search", "--onlyvisible", "--name", "^Tavrelon$").stdout.split()
    return next((window for window in found if screen.size_of(window) >= (720, 480)), None)


def show_dashboard(stage):
    """A second start shows the dashboard of the first; each page is looked at."""
    tavrelon = stage.tavrelon
    second = subprocess.run([tavrelon.executable], stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=20,
                            env={**os.environ, **tavrelon.environment})
    if second.returncode != 0:
        raise Fault(f"a second start ended with {second.returncode}: {second.stderr}")
    window = wait_for("the dashboard", dashboard, seconds=20)
    wait_for("the focus in the dashboard", lambda: screen.run("xdotool", "getwindowfocus").stdout.strip() == window)
    for page, top in PAGES.items():
        screen.answer("xdotool", "mousemove", "--window", window, str(SIDEBAR), str(top), "click", "1")
        time.sleep(1)  # until the page has been faded in
        screen.picture(stage.output / f"dashboard-{page}.png")
    screen.press("alt+F4")
    wait_for("the end of the dashboard", lambda: not dashboard())


def check_all(stage):
    """What `--check` says beside the running program; a private desktop need not have a tray, sound or a recogniser."""
    tavrelon = stage.tavrelon
    stage.service.answer_with({"content": "ready"})
    done = subprocess.run([tavrelon.executable, "--check"], stdin=subprocess.DEVNULL, capture_output=True, text=True,
                          timeout=60, env={**os.environ, **tavrelon.environment})
    show("tavrelon --check", done.stdout)
    missing = set(re.findall(r"^MISSING (\w+)", done.stdout, re.MULTILINE))
    if not re.search(r"^ok +model", done.stdout, re.MULTILINE) or missing - {"tray", "sound", "recogniser"}:
        raise Fault(f"--check: {done.stdout}{done.stderr}")


def ask_once(stage, what):
    case = CASES[0]
    after = stage.play("mousepad", what, case)
    show(f"field after ({what})", after)
    if after != case.after:
        raise Fault(f"{what}: the field holds {after!r}")


def main(build, output, program, upgrade):
    build, output = Path(build), Path(output)
    output.mkdir(parents=True, exist_ok=True)
    show("first answer", f"{first_answer.play(build, output, program):.1f} s after the program's start")
    with tempfile.TemporaryDirectory(prefix="tavrelon-package.", ignore_cleanup_errors=True) as home, \
            StandIn(build / "tests/support/tavrelon-stand-in-service", output / "service.log") as service:
        with Tavrelon(program, output / "tavrelon.log", home, service.port) as tavrelon:
            tavrelon.wait_until_live()
            stage = Stage(service, tavrelon, output)
            show_dashboard(stage)
            check_all(stage)
            if wrong := play_all(stage) + demo_pictures.play(stage, build, show):
                raise Fault(f"{wrong} answers are wrong")
            subprocess.run([upgrade], stdin=subprocess.DEVNULL, check=True)
            ask_once(stage, "old-program-after-upgrade")
            show_dashboard(stage)
        with Tavrelon(program, output / "tavrelon-new.log", home, service.port) as tavrelon:
            tavrelon.wait_until_live()
            ask_once(Stage(service, tavrelon, output), "new-program")
    for log in (output / "first-tavrelon.log", output / "tavrelon.log", output / "tavrelon-new.log"):
        if found := [line for line in log.read_text(errors="replace").splitlines() if MISSING.search(line)]:
            raise Fault("something is missing in the package's surroundings:\n" + "\n".join(found))


if __name__ == "__main__":
    run(main, "package")
