"""The parts that only compute, and the history on the disk."""

import os
import time
from pathlib import Path

from bench_run import take_benchmarks
from bench_table import Row, Theme

DISK = "200 KB written, flushed and renamed, alone"
MEASURED = [
    Row("history add at 20 entries of 10 KB, on disk", "us", "The history is written whole and flushed, so that a "
        "power cut leaves the old one or the new one.", aim=2000, limit=f"{{{DISK}}}: the disk alone"),
    Row("style profile over 20 entries of 10 KB", "us", "How the user writes, told to the model.", aim=2000),
    Row("history of 20 long entries scrolled, longest frame", "ms", "With all of the window drawn anew at each step.",
        aim=50, limit="16.7 ms keep up with a display of 60 Hz"),
    Row("route, built-in scenes", "us", "Which kind of place the user writes in."),
    Row("composeSystemPrompt, with a clone profile", "us"),
    Row("settings encode", "us"),
    Row("settings decode", "us"),
    Row("textDifference, 20 000 Latin", "ms", "What was typed since the hotkey, found in the whole text.", aim=2),
    Row("textDifference, 20 000 Chinese and emoji", "ms", aim=2),
]
ROWS = MEASURED + [Row(DISK, "us", "The same bytes in the same folder, by a few lines of Python.")]


def microseconds_of_a_write(folder):
    began = time.perf_counter()
    fresh = Path(folder) / "fresh"
    with open(fresh, "wb") as file:
        file.write(bytes(200_000))
        file.flush()
        os.fsync(file.fileno())
    fresh.rename(Path(folder) / "history")
    return 1e6 * (time.perf_counter() - began)


def measure(bench, report):
    with report.step(DISK), bench.home() as folder:
        report.take(DISK, [microseconds_of_a_write(folder) for _ in range(bench.extent.repetitions)])
    take_benchmarks(report, bench.build / "bench/tavrelon-bench", bench.extent.repetitions,
                    [row.name for row in MEASURED])


THEME = Theme("logic", "Computing and keeping", "What happens within a request without anybody seeing it.", ROWS,
              measure)
