"""The keyboard and window of a measurement, and what it says about keys."""

import select
import subprocess

from bench_table import Figures, Row, Theme, figures_of
from waiting import Fault

MICROSECONDS = 1e-3  # of a nanosecond figure
PAUSE = 1000         # microseconds between two measured keys

ALONE = "key to window, without Tavrelon"
PASSED = "key to window, hotkey that passes (Escape)"
VERDICT = "key verdict: what a passed hotkey costs more"
ROWS = [
    Row(ALONE, "us", "An ordinary key on its way from the keyboard to the window, with nobody in between."),
    Row("key to window, no hotkey", "us", "The same key while Tavrelon runs: it only looks on.", limit=f"{{{ALONE}}}"),
    Row(PASSED, "us", "A key that is a hotkey, but means nothing at the moment: it is held until Tavrelon has decided, "
        "then let go to the window.", limit=f"{{{ALONE}}}"),
    Row(VERDICT, "us", "What that decision adds to Escape, by the median and by the slowest of a hundred.", aim=1000,
        aimed="p99", limit="one trip from the X server to the program and back"),
    Row("keys lost, one at a time", "keys", "Of 2 000 ordinary keys and as many hotkeys.", aim=0),
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


def measure(bench, report):
    count, flood = bench.extent.keys, bench.extent.flood
    with report.step(*(row.name for row in ROWS)), bench.home() as home, bench.key_probe() as probe:
        report.take(ALONE, probe.latencies("x", count))
        before = figures_of(probe.latencies("Escape", count))
        with bench.product(home, "keys", {"screenshotMode": "none"}) as tavrelon:
            tavrelon.wait_until_live()
            plain, passed = probe.latencies("x", count), probe.latencies("Escape", count)
            report.take("key to window, no hotkey", plain)
            report.take(PASSED, passed)
            after = figures_of(passed)
            report.keep(VERDICT, Figures(after.median - before.median, after.p99 - before.p99))
            report.take("keys lost, one at a time", [2 * count - len(plain) - len(passed)])
            received, misplaced = map(int, probe.ask(f"flood {flood}").split())
            report.take("keys lost, in bursts", [flood - received])
            report.take("keys out of order, in bursts", [misplaced])


THEME = Theme("keys", "Keys on their way", "Every key that anybody types may be a hotkey, so typing must not become "
              "slower, and no key may be lost.", ROWS, measure)
