"""What a program costs while nobody asks for anything: memory and wake-ups, of all its processes together."""

import re
import time
from pathlib import Path

from waiting import Fault

QML_ALONE = "about 23 MB: a QML program of Qt 6.4 that shows nothing, tried apart"


def family(pid):
    """The process and all that come from it."""
    found = [pid]
    for each in found:
        for children in Path(f"/proc/{each}/task").glob("*/children"):
            try:
                found += map(int, children.read_text().split())
            except OSError:
                pass  # the thread has ended
    return found


def megabytes(pid, kind):
    """The memory of one kind, as smaps_rollup calls it."""
    kilobytes = 0
    for each in family(pid):
        text = Path(f"/proc/{each}/smaps_rollup").read_text()
        kilobytes += int(re.search(rf"^{kind}:\s+(\d+) kB", text, re.MULTILINE).group(1))
    return kilobytes / 1024


def take(bench, report, pid, memory, own, wake_ups):
    """Looks at a program that nobody asks for anything, for the rows of these names."""
    time.sleep(bench.extent.rest)
    woken = wake_ups_a_minute(pid, bench.extent.idle)
    report.take(memory, [megabytes(pid, "Pss")])
    report.take(own, [megabytes(pid, "Private_Dirty")])
    report.take(wake_ups, [woken])


def waits_of_threads(pid):
    """How often each living thread has waited, by its number."""
    waits = {}
    for each in family(pid):
        for status in Path(f"/proc/{each}/task").glob("*/status"):
            try:
                text = status.read_text()
            except OSError:
                continue  # the thread has ended
            found = re.search(r"^voluntary_ctxt_switches:\s+(\d+)", text, re.MULTILINE)
            waits[status.parent.name] = int(found.group(1))
    return waits


def wake_ups_a_minute(pid, seconds):
    """Looks often, so that threads that come or go meanwhile count with what they did until then."""
    last, total = waits_of_threads(pid), 0
    if not last:
        raise Fault("the process has ended")
    began = time.monotonic()
    while time.monotonic() < began + seconds:
        time.sleep(0.5)
        now = waits_of_threads(pid)
        for thread, count in now.items():
            known = last.get(thread, 0)
            total += count - known if count >= known else count  # fewer than before: a new thread of an old number
        last = now
    return total * 60 / (time.monotonic() - began)
