"""Requests with pictures, replies, what is learnt, and the text of documents."""

import json
import subprocess

import bench_documents
from bench_table import Row, rate_row, row

AIMS = {"recording of a sample, as its caller sees it": "20"}


def pure_parts(build, extent):
    done = subprocess.run([build / "bench/generation/generation-bench", "--benchmark_format=json",
                           "--benchmark_min_time=0.05", f"--benchmark_repetitions={extent.repetitions}"],
                          capture_output=True, text=True, check=True, stdin=subprocess.DEVNULL)
    taken, units = {}, {}
    for run in json.loads(done.stdout)["benchmarks"]:
        if run["run_type"] == "iteration":
            name, rate = run["run_name"].split("/iterations:")[0], run.get("bytes_per_second")
            units[name] = "MB/s" if rate else run["time_unit"]
            taken.setdefault(name, []).append(rate / 1e6 if rate else run["real_time"])
    return [(rate_row if units[name] == "MB/s" else row)(name, units[name], values, AIMS.get(name, ""))
            for name, values in taken.items()]


def memory_of_a_request(build, extent):
    ratios = []
    for _ in range(extent.starts):
        done = subprocess.run([build / "bench/generation/request-memory"], capture_output=True, text=True, check=True,
                              stdin=subprocess.DEVNULL)
        sent, grown = map(int, done.stdout.split())
        ratios.append(grown / sent)
    return [Row("bytes sent with 24 frames of 300 KB", "MB", sent / 1e6),
            row("peak memory of that request, frames included", "times", ratios, "2.5")]


def rows(build, extent):
    return (pure_parts(build, extent) + memory_of_a_request(build, extent)
            + bench_documents.readings(build / "src/tavrelon-document-reader", extent.starts))
