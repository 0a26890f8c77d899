"""The program where something that it counts on is missing or broken: a clear line, an orderly life or end, nothing lost."""

import contextlib
import json
import os
import resource
import signal
import socket
import subprocess
from types import SimpleNamespace

import pytest
from editors import let_keys_arrive
from conftest import HOTKEY
from programs import Program
from waiting import wait_for

UNAVAILABLE, USAGE, TRY_AGAIN, NO_PERMISSION = 69, 64, 75, 77
WITH_MOUNTS = ["unshare", "--mount"] + ([] if os.getuid() == 0 else ["--map-root-user"])
READ_ONLY_HOME = ('mount -o bind,ro "$HOME" "$HOME" 2>/dev/null || '
                  '{ mount -o bind "$HOME" "$HOME" && mount -o remount,bind,ro "$HOME"; }')
FULL_HOME = ('s=$(cat "$HOME/.config/Tavrelon/tavrelon.settings") && mount -t tmpfs -o size=64k full "$HOME" && '
             'mkdir -p "$HOME/.config/Tavrelon" && echo "$s" >"$HOME/.config/Tavrelon/tavrelon.settings" && '
             '{ cat /dev/zero >"$HOME/filler" 2>/dev/null; true; }')


@pytest.fixture
def house(desk):
    """A home with settings in it; `start` starts the program there, `run` runs it to its end."""
    home = desk.folder_named("home")
    settings = home / ".config/Tavrelon/tavrelon.settings"
    settings.parent.mkdir(parents=True)
    settings.write_text(json.dumps({"enableCustomPollinations": True, "pollinationsVisionModel": "test-model",
                                    "pollinationsBaseURL": f"http://127.0.0.1:{desk.service.port}"}))
    environment = {**os.environ, "HOME": str(home)}
    for name in ("XDG_CONFIG_HOME", "XDG_DATA_HOME"):
        environment.pop(name, None)

    def start(log="log", command=()):
        program = Program(["env", "-i", *(f"{name}={value}" for name, value in environment.items()), *command,
                           str(desk.executable), "--background"], home.parent / log)
        return desk.started(program)

    def run(*arguments):
        done = subprocess.run([desk.executable, *arguments], env=environment, capture_output=True, text=True, timeout=20)
        return done.returncode, done.stdout + done.stderr

    return SimpleNamespace(home=home, settings=settings, environment=environment, start=start, run=run)


def listens(program):
    return program.wait_for_line(r"\[Hotkey\] Listening", seconds=20)


def expect_a_request_to_work(desk, program):
    """One request from the keyboard to the saved file."""
    answer = "Grüße, 世界 👋"
    desk.answers(answer)
    editor = desk.open("mousepad")
    mark = len(program.written())
    let_keys_arrive()
    desk.keyboard.press(HOTKEY)
    program.wait_for_line(r"\[Hotkey\] Starting text listening", mark, 20)
    editor.type("greet")
    desk.commit()
    program.wait_for_line("Text generated with custom model", mark, 20)
    assert editor.saved(answer) == answer, program.written()
    editor.stop()


def ends(program):
    program.process.terminate()
    return program.process.wait(20) == 0


def test_without_an_x_server_it_says_so_and_ends(house):
    del house.environment["DISPLAY"]
    assert house.run() == (UNAVAILABLE, "Tavrelon cannot start: DISPLAY names no X server.\n")
    house.environment["DISPLAY"] = ":4711"
    assert house.run() == (UNAVAILABLE, "Tavrelon cannot start: The X server of display :4711 cannot be reached.\n")
    status, said = house.run("--version")
    assert status == 0 and said.startswith("Tavrelon ")
    assert house.run("--fast") == (USAGE, "'--fast' is no option of Tavrelon; --help shows them.\n")


def test_an_x_server_that_goes_away_takes_it_along(house):
    with subprocess.Popen(["Xvfb", "-displayfd", "1", "-nolisten", "tcp", "-noreset"], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL) as server:
        house.environment["DISPLAY"] = f":{server.stdout.readline().decode().strip()}"
        # The X library ends the process where it stands, so that nothing is given back.
        house.environment["ASAN_OPTIONS"] = house.environment.get("ASAN_OPTIONS", "") + ":detect_leaks=0"
        program = house.start()
        listens(program)
        server.kill()
    assert program.process.wait(10) >= 0, "a signal ended it"
    assert "X" in program.written()


def test_other_programs_cannot_look_into_its_memory(house):
    limits = resource.getrlimit(resource.RLIMIT_CORE)
    resource.setrlimit(resource.RLIMIT_CORE, (limits[1], limits[1]))
    try:
        program = house.start()
    finally:
        resource.setrlimit(resource.RLIMIT_CORE, limits)
    listens(program)
    process = f"/proc/{program.process.pid}"
    with open(f"{process}/limits", encoding="ascii") as told:
        assert "Max core file size 0 " in " ".join(told.read().split())
    assert os.stat(f"{process}/mem").st_uid == 0, "what nobody may look into is the system's"
    assert ends(program)


def test_a_second_process_calls_the_first_and_ends(house):
    first = house.start()
    listens(first)
    assert house.run() == (0, "Tavrelon is running already and shows its dashboard.\n")
    os.kill(first.process.pid, signal.SIGSTOP)
    assert house.run() == (TRY_AGAIN, "Tavrelon is running already and does not answer.\n")
    house.environment["XDG_CONFIG_HOME"] = str(house.home / "other")  # settings of its own, so a program of its own
    neighbour = house.start("neighbour")
    listens(neighbour)
    assert ends(neighbour)
    del house.environment["XDG_CONFIG_HOME"]
    first.process.kill()
    first.process.wait(10)
    successor = house.start("successor")
    listens(successor)  # a killed program must not lock it out
    assert ends(successor)


@pytest.mark.parametrize("mount", [READ_ONLY_HOME, FULL_HOME], ids=["read-only", "full"])
def test_a_home_that_takes_no_files_costs_only_the_memory(desk, house, mount):
    before = house.settings.read_text()
    house.environment["TAVRELON_ALLOW_DEBUGGER"] = "1"  # for a look at its folders
    program = house.start(command=[*WITH_MOUNTS, "sh", "-c", f'{mount} && exec "$0" "$@"'])
    listens(program)
    expect_a_request_to_work(desk, program)
    program.wait_for_line("Failed to save history: ", seconds=20)
    with open(f"/proc/{program.process.pid}/root{house.settings}", encoding="utf-8") as there:
        assert there.read().strip() == before
    assert ends(program)


def test_without_a_session_bus_and_with_a_strange_locale_it_works_through_the_clipboard(desk, house):
    house.environment |= {"DBUS_SESSION_BUS_ADDRESS": "unix:path=/nowhere/bus", "LANG": "tlh_QO.KOI-7",
                          "LC_ALL": "tlh_QO.KOI-7", "XDG_CONFIG_HOME": "relative/folder", "XDG_DATA_HOME": "~/data"}
    house.environment.pop("XDG_RUNTIME_DIR", None)
    program = house.start()
    listens(program)
    program.wait_for_line(r"\[Accessibility\] No accessibility bus", seconds=20)
    expect_a_request_to_work(desk, program)
    history = house.home / ".local/share/Tavrelon/history.json"
    wait_for("the request in the history", lambda: history.exists() and "greet" in history.read_text(), 20)
    assert ends(program)


def test_with_buses_that_hang_it_starts_and_works_through_the_clipboard(desk, house):
    with contextlib.closing(socket.socket(socket.AF_UNIX)) as silent:  # nobody accepts
        path = house.home.parent / "bus"
        silent.bind(str(path))
        silent.listen()
        house.environment |= {"DBUS_SESSION_BUS_ADDRESS": f"unix:path={path}", "IBUS_ADDRESS": f"unix:path={path}",
                              "QT_IM_MODULE": "ibus"}
        program = house.start()
        listens(program)
        assert "[Start] The session bus does not answer" in program.written()
        assert "[Start] IBus does not answer" in program.written()
        expect_a_request_to_work(desk, program)
        assert ends(program)


def test_folders_are_this_users_alone_or_it_does_not_start(house):
    images = house.home / ".local/share/Tavrelon/history-images"
    images.parent.mkdir(parents=True)
    images.symlink_to(house.home)
    status, said = house.run("--background")
    assert (status, said) == (NO_PERMISSION, f"Tavrelon cannot start: {images} is a symbolic link. Put a folder there.\n")
    images.unlink()
    for path in (house.settings, house.settings.parent):
        path.chmod(0o777)
    assert listens(house.start())
    for path in (house.settings, house.settings.parent):
        assert path.stat().st_mode & 0o077 == 0, path


def test_the_check_tells_what_works_and_what_is_missing(desk, house):
    def findings(display=True):
        environment = dict(house.environment) if display else {**house.environment, "DISPLAY": ""}
        done = subprocess.run([desk.executable, "--check", "--json"], env=environment, capture_output=True, timeout=60)
        report = json.loads(done.stdout)
        assert done.returncode == report["missing"] == sum(not check["works"] for check in report["checks"])
        return {check["subject"]: (check["works"], check["says"]) for check in report["checks"]}

    desk.answers("ready")
    before = sorted(house.home.rglob("*"))
    found = findings()
    assert all(found[subject][0] for subject in ("configuration", "data", "settings", "session", "hotkeys",
                                                 "accessibility", "clipboard", "pictures", "model")), found
    assert found["program"][1] == "not running" and "test-model" in found["model"][1]
    assert sorted(house.home.rglob("*")) == before, "nothing is stored"

    program = house.start()
    listens(program)
    assert findings()["program"][1] == "running"
    assert "held by the running" in findings()["hotkeys"][1]
    expect_a_request_to_work(desk, program)
    program.stop()

    desk.answers("ready")
    without = findings(display=False)
    assert not without["session"][0] and without["model"][0] and "pictures" not in without
    house.settings.write_text(json.dumps({**json.loads(house.settings.read_text()), "screenshotQuality": "high"}))
    desk.service.answer_with({"status": 401, "body": "no"})
    found = findings()
    assert not found["settings"][0] and "screenshotQuality" in found["settings"][1]
    assert not found["model"][0]
    desk.answers("ready \x1b[2J")
    status, told = house.run("--check")
    assert status == told.count("MISSING") > 0 and "ready" in told and "\x1b" not in told
    assert house.run("--json")[0] == USAGE
