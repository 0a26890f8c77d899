"""What the whole process costs: its start, and its life when nobody asks for anything."""

import os
import re
import subprocess
import time
from pathlib import Path

from bench_table import Row, row
from waiting import Fault

LIVE = b"[Hotkey] Listening"


def seconds_to_live(tavrelon):
    """Starts the program with a pipe for its log and waits for the line that says that hotkeys are live."""
    began = time.monotonic()
    process = subprocess.Popen([tavrelon.executable, "--background"], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                               stderr=subprocess.DEVNULL, env={**os.environ, **tavrelon.environment})
    try:
        for line in process.stdout:
            if LIVE in line:
                return time.monotonic() - began
    finally:
        process.terminate()
        process.communicate(timeout=10)
    raise Fault("the program ended before its hotkeys were live")


def start(tavrelon, times):
    return row(f"start to hotkeys live, {times} starts", "ms",
               [1000 * seconds_to_live(tavrelon) for _ in range(times)], "200")


def pss_megabytes(pid):
    text = Path(f"/proc/{pid}/smaps_rollup").read_text()
    return int(re.search(r"^Pss:\s+(\d+) kB", text, re.MULTILINE).group(1)) / 1024


def wake_ups(pid):
    total = 0
    for status in Path(f"/proc/{pid}/task").glob("*/status"):
        total += int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)", status.read_text(), re.MULTILINE).group(1))
    return total


def idle(pid, settle, length):
    """Looks at the program for `length` seconds after it had `settle` seconds to come to rest."""
    time.sleep(settle)
    before = wake_ups(pid)
    time.sleep(length)
    woken = (wake_ups(pid) - before) * 60 / length
    return [Row("resident memory, idle (PSS)", "MB", pss_megabytes(pid), aim="40"),
            Row(f"wake-ups a minute, idle for {length} s", "", woken, aim="0")]
