"""How quickly overlays and the prompt box come and go, and what they cost."""

import subprocess
import time

import bench_process
import screen
from bench_table import Row, row
from waiting import Fault

PROMPT = "shift+alt+super+p"
OVERLAY = "880 470 200 80"  # where an overlay stands when no caret is known, on the 1920 by 1080 of scripts/bench
REST = 0.4                  # seconds between two showings


def taken(probe, command):
    answer = probe.ask(command)
    if answer == "nothing":
        raise Fault(f"'{command}' came to nothing")
    return int(answer) / 1e6


def overlay(probe, tavrelon):
    mark = len(tavrelon.written())
    shown = taken(probe, f"frame {screen.HOTKEY} 5000 {OVERLAY}")
    tavrelon.wait_for_line(r"\[Hotkey\] Starting text listening", mark)
    probe.strike("Escape")
    time.sleep(REST)
    return shown


def prompt_box(probe):
    opened = taken(probe, f"focus gone {PROMPT} 5000")
    time.sleep(REST)
    closed = taken(probe, "focus back Escape 5000")
    time.sleep(REST)
    return opened, closed


def views(probe, tavrelon, times, settle, idle):
    shown = [overlay(probe, tavrelon) for _ in range(times)]
    opened, closed = zip(*(prompt_box(probe) for _ in range(times)))
    memory, woken = bench_process.idle(tavrelon.process.pid, settle, idle)
    return [row("key press to overlay on the screen", "ms", shown, "50"),
            row("key press to prompt box with the focus", "ms", opened, "100"),
            row("Escape to the focus back in the window", "ms", closed, "20"),
            Row("resident memory, all views built and hidden (PSS)", "MB", memory.median, aim="30"),
            Row(f"{woken.name}, all views hidden", "", woken.median, aim="0")]


def faces(executable, seconds):
    """The share of a core that each face takes while it shows."""
    done = subprocess.run([executable, str(seconds)], capture_output=True, text=True, check=True,
                          stdin=subprocess.DEVNULL)
    shares = (line.rsplit(" ", 1) for line in done.stdout.splitlines())
    return [Row(f"processor, face '{name}'", "%", float(share), aim="0" if name == "hidden" else "5")
            for name, share in shares]
