"""The start of the program, and its life when nobody asks for anything; with others beside it."""

import os
import shutil
import subprocess
import time
from pathlib import Path

import bench_rest
import screen
from bench_table import Absent, Row, Theme
from programs import Program
from waiting import Fault, wait_for

LIVE = b"[Hotkey] Listening"
PEERS = {"CopyQ": "copyq", "KeePassXC": "keepassxc"}
WHO = ("Tavrelon", *PEERS)
KEEPASSXC = """[General]
UpdateCheckMessageShown=true
[GUI]
CheckForUpdates=false
MinimizeOnStartup=true
MinimizeToTray=true
ShowTrayIcon=true
"""


def icon_row(who):
    return f"start to icon in the tray, {who}"


def memory_row(who):
    return f"memory at rest (PSS), {who}"


def own_row(who):
    return f"memory of its own at rest, {who}"


def wake_ups_row(who):
    return f"wake-ups a minute at rest, {who}"


ROWS = [
    Row("start to hotkeys live", "ms", "From the start of the process until a hotkey would work.", aim=60),
    *(Row(icon_row(who), "ms", "From the start of the process until its icon shows in the tray, which is when a user "
          "sees that it is there. Looked at every few milliseconds, the same for all.") for who in WHO),
    Row(memory_row("Tavrelon"), "MB", "All processes of the program together; a page that several programs use counts "
        "in parts (PSS), so this is less where others with the same libraries run. Icon in the tray, no window "
        "open yet.", aim=25, limit=bench_rest.QML_ALONE),
    *(Row(memory_row(who), "MB") for who in PEERS),
    *(Row(own_row(who), "MB", "What the program has written itself and shares with nobody, whatever else runs.",
          aim=4 if who == "Tavrelon" else None) for who in WHO),
    Row(wake_ups_row("Tavrelon"), "", "How often any of its threads runs after a wait, in a minute without keys or "
        "clicks. The minute begins 40 seconds after the start: until then Qt ends threads of its own. Each costs "
        "battery.", aim=0),
    *(Row(wake_ups_row(who), "") for who in PEERS),
]


def milliseconds_to_live(executable, environment):
    """Starts the program with a pipe for its log and waits for the line that says that hotkeys are live."""
    began = time.monotonic()
    process = subprocess.Popen([executable, "--background"], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                               stderr=subprocess.DEVNULL, env={**os.environ, **environment})
    try:
        for line in process.stdout:
            if LIVE in line:
                return 1000 * (time.monotonic() - began)
    finally:
        process.terminate()
        process.communicate(timeout=10)
    raise Fault("the program ended before its hotkeys were live")


def tray_icon(pid):
    """The only window that a program of these shows."""
    return screen.run("xdotool", "search", "--onlyvisible", "--pid", str(pid)).stdout.strip()


def started(start):
    """The program that `start()` gives once its icon shows, and the milliseconds until then."""
    began = time.monotonic()
    program = start()
    try:
        wait_for(f"the tray icon of {program.name}", lambda: tray_icon(program.process.pid), pause=0.002)
    except BaseException:
        program.stop()
        raise
    return program, 1000 * (time.monotonic() - began)


def measure_one(bench, report, who, start):
    """`start()` gives the program, newly started."""
    resting = (memory_row(who), own_row(who), wake_ups_row(who))
    with report.step(icon_row(who), *resting):
        if who in PEERS and not shutil.which(PEERS[who]):
            raise Absent(PEERS[who])
        taken = []
        for _ in range(bench.extent.starts):
            program, milliseconds = started(start)
            program.stop()
            taken.append(milliseconds)
        report.take(icon_row(who), taken)
        program, _ = started(start)
        with program:
            bench_rest.take(bench, report, program.process.pid, *resting)



def measure(bench, report):
    with bench.home() as home, Program(["tint2"], bench.output / "tray.log") as tray:
        wait_for("the tray", lambda: tray_icon(tray.process.pid))
        with report.step("start to hotkeys live"):
            tavrelon = bench.product(home, "start")
            tavrelon.stop()
            report.take("start to hotkeys live", [milliseconds_to_live(tavrelon.executable, tavrelon.environment)
                                                  for _ in range(bench.extent.starts)])
        measure_one(bench, report, "Tavrelon", lambda: bench.product(home, "rest"))
        configuration = Path(home) / "keepassxc.ini"
        configuration.write_text(KEEPASSXC)
        commands = {"CopyQ": ["copyq"], "KeePassXC": ["keepassxc", "--config", str(configuration)]}
        for who, command in commands.items():
            measure_one(bench, report, who, lambda: Program(command, bench.output / f"{who}.log",
                                                            {"XDG_CONFIG_HOME": home, "XDG_DATA_HOME": home}))


THEME = Theme("process", "Start, memory and rest", "The program waits in the background all day, so it should start at "
              "once, be small and sleep. Beside it are two well-kept programs that also live in the tray: a clipboard "
              "manager and a password manager, as Debian ships them.", ROWS, measure)
