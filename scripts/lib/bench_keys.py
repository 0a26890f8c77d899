"""The keyboard and window of a measurement, and what it says about keys."""

import select
import subprocess

from bench_table import Row, row
from waiting import Fault

MICROSECONDS = 1e-3  # of a nanosecond figure
PAUSE = 1000         # microseconds between two measured keys


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


def without_the_program(probe, count):
    return {key: probe.latencies(key, count) for key in ("x", "Escape")}


def with_the_program(probe, count, flood, before):
    """`before` holds the same keys without the program; the differences of the quantiles are what it adds."""
    plain, passed = probe.latencies("x", count), probe.latencies("Escape", count)
    received, misplaced = map(int, probe.ask(f"flood {flood}").split())
    return [
        row("key to window, without Tavrelon", "us", before["x"]),
        row("key to window, no hotkey", "us", plain),
        row("key to window, hotkey that passes (Escape)", "us", passed),
        added("key verdict: what a passed hotkey costs more", before["Escape"], passed, "p99 1000"),
        Row(f"keys lost of {count}", "keys", 2 * count - len(plain) - len(passed), aim="0"),
        Row(f"keys lost of {flood} in bursts", "keys", flood - received, aim="0"),
        Row(f"keys out of order of {flood}", "keys", misplaced, aim="0"),
    ]


def added(name, before, after, aim):
    first, second = row("", "us", before), row("", "us", after)
    return Row(name, "us", second.median - first.median, second.p99 - first.p99, aim)
