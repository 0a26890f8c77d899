"""The keyboard and window of a measurement, and what it says about keys."""

import select
import subprocess
import time

from bench_table import Row, Theme
from waiting import Fault

MICROSECONDS = 1e-3  # of a nanosecond figure
PAUSE = 1000         # microseconds between two measured keys

ALONE = "key to window, without Tavrelon"
BESIDE = "key to window, no hotkey"
HANDLER = "hotkey to handler"
ROWS = [
    Row(ALONE, "us", "An ordinary key on its way from the keyboard to the window, with nobody in between."),
    Row(BESIDE, "us", "The same key while Tavrelon runs: it only looks on.", limit=f"{{{ALONE}}}"),
    Row(HANDLER, "us", "From the press of a hotkey to the line of code that acts on it.", aim=2000,
        limit="one way from the X server to the program"),
    Row("keys lost, one at a time", "keys", "Of 4 000 ordinary keys.", aim=0),
    Row("keys lost, in bursts", "keys", "Of 10 000 keys as fast as the X server takes them.", aim=0),
    Row("keys out of order, in bursts", "keys", "Of the same.", aim=0),
]


class KeyProbe:
    """The program key-probe, steered line by line. It ends with the `with` block."""

    def __init__(self, executable):
        self.process = subprocess.Popen([str(executable)], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.answer(20)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.stdin.close()
        try:
            self.process.wait(5)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()

    def answer(self, seconds):
        ready, _, _ = select.select([self.process.stdout], [], [], seconds)
        line = self.process.stdout.readline() if ready else ""
        if not line:
            raise Fault("key-probe gave no answer")
        return line.strip()

    def ask(self, command, seconds=120):
        self.process.stdin.write(command + "\n")
        self.process.stdin.flush()
        return self.answer(seconds)

    def strike(self, chord):
        """The time, in nanoseconds of the monotonic clock, at which the chord's last key went down."""
        return int(self.ask(f"strike {chord}"))

    def arrival(self, chord, seconds):
        answer = self.ask(f"await {chord} {int(seconds * 1000)}", seconds + 10)
        if answer == "nothing":
            raise Fault(f"{chord} did not reach the window within {seconds:g} s")
        return int(answer)

    def latencies(self, key, count):
        return [int(each) * MICROSECONDS for each in self.ask(f"measure {key} {count} {PAUSE}").split()]


def to_handler(bench, probe, count):
    """The microseconds from each press of a hotkey to its handler."""
    handler = subprocess.Popen([str(bench.build / "bench/hotkey-probe")], stdout=subprocess.PIPE, text=True)
    try:
        handler.stdout.readline()  # it holds the hotkey now
        taken = []
        for _ in range(count):
            struck = probe.strike("shift+alt+super+l")
            if not select.select([handler.stdout], [], [], 5)[0]:
                raise Fault("a hotkey did not come to its handler within 5 s")
            taken.append((int(handler.stdout.readline()) - struck) * MICROSECONDS)
            time.sleep(PAUSE * 1e-6)
        return taken
    finally:
        handler.kill()
        handler.wait()


def measure(bench, report):
    count, flood = bench.extent.keys, bench.extent.flood
    with report.step(*(row.name for row in ROWS)), bench.home() as home, bench.key_probe() as probe:
        report.take(ALONE, probe.latencies("x", count))
        report.take(HANDLER, to_handler(bench, probe, min(count, 500)))
        with bench.product(home, "keys", {"screenshotMode": "none"}) as tavrelon:
            tavrelon.wait_until_live()
            first, second = probe.latencies("x", count), probe.latencies("Escape", count)
            report.take(BESIDE, first)
            report.take("keys lost, one at a time", [2 * count - len(first) - len(second)])
            received, misplaced = map(int, probe.ask(f"flood {flood}").split())
            report.take("keys lost, in bursts", [flood - received])
            report.take("keys out of order, in bursts", [misplaced])


THEME = Theme("keys", "Keys on their way", "Every key that anybody types may be a hotkey, so typing must not become "
              "slower, and no key may be lost.", ROWS, measure)
