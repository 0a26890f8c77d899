"""What reading, writing and picturing the field in front costs, in real editors."""

import subprocess
import tempfile
from pathlib import Path

import screen
from bench_table import row
from programs import EDITORS, Editor
from waiting import Fault, wait_for

SIZES = {100: "3", 20_000: "5", 200_000: "20"}  # characters, and the aim in milliseconds
LENGTHS = (1000, 10_000)


def measured(probe, *command):
    """The values of each measurement of the probe, by name."""
    done = subprocess.run([str(probe), *map(str, command)], capture_output=True, text=True, timeout=300,
                          stdin=subprocess.DEVNULL)
    if done.returncode != 0:
        raise Fault(f"{probe.name} {command[0]}: {done.stderr.strip()}")
    values = {}
    for line in done.stdout.splitlines():
        name, value = line.split("\t")
        values.setdefault(name, []).append(float(value))
    return values


def editor_with(kind, length, folder):
    path = Path(folder) / f"{kind}-{length}.txt"
    line = "The quick brown fox jumps over the lazy dog and rests. \n"
    path.write_text((line * (length // len(line) + 1))[:length], encoding="utf-8")
    return Editor(kind, path, Path(folder) / "editor.log", folder)


def reading(probe, folder, count):
    rows = []
    for kind in EDITORS:
        for length, aim in SIZES.items():
            with editor_with(kind, length, folder):
                taken = measured(probe, "snapshot", count)["snapshot"]
                rows.append(row(f"field read, {length} characters, {kind}", "ms", taken, aim))
                if length == 100:
                    rows.append(row(f"caret's place, {kind}", "ms", measured(probe, "caret", count)["caret"]))
        with editor_with(kind, 100, folder) as editor:
            taken = measured(probe, "hung", editor.process.pid)
            rows.append(row(f"field read, hung {kind}, first", "ms", taken["first"], "300"))
            rows.append(row(f"field read, hung {kind}, next", "ms", taken["next"], "20"))
    return rows


def writing(probe, folder):
    rows = []
    for kind in EDITORS:
        for length in LENGTHS:
            with editor_with(kind, 0, folder):
                rows += [row(f"{length} characters into {kind}, {way}", "ms", taken)
                         for way, taken in measured(probe, "write", length).items()]
    return rows


def pictures(probe, folder, count):
    with editor_with("mousepad", 20_000, folder) as editor:
        screen.press("F11")
        wait_for("the whole screen", lambda: "1920x1080" in screen.run("xdotool", "getwindowgeometry",
                                                                       editor.window).stdout)
        taken = measured(probe, "picture", count)
    alone = row("window of 1920 by 1080, encoding alone", "ms", taken["encoding alone"])
    return [row("window of 1920 by 1080 to JPEG", "ms", taken["window to JPEG"], f"{1.3 * alone.median:.3g}"), alone,
            row("window of 1920 by 1080, its pixels from the X server alone", "ms", taken["fetching alone"])]


def rows(probe, count):
    with tempfile.TemporaryDirectory(prefix="tavrelon-bench.", ignore_cleanup_errors=True) as folder:
        return reading(probe, folder, count) + writing(probe, folder) + pictures(probe, folder, count)
