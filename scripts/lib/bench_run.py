"""The programs that measure, and the machine on which they do."""

import json
import os
import platform
import subprocess
import time
from pathlib import Path

from waiting import Fault


def output_of(command, seconds=300, environment=None):
    """What a program prints; a Fault with its last words if it fails."""
    done = subprocess.run(list(map(str, command)), capture_output=True, text=True, stdin=subprocess.DEVNULL,
                          timeout=seconds, env={**os.environ, **(environment or {})})
    if done.returncode != 0:
        raise Fault(f"{Path(command[0]).name} ended with status {done.returncode}: {done.stderr.strip()[-300:]}")
    return done.stdout


def take_benchmarks(report, program, repetitions, names):
    """Has a program of Google Benchmark take these rows, rates in MB/s."""
    with report.step(*names):
        printed = output_of([program, "--benchmark_format=json", "--benchmark_min_time=0.05",
                             f"--benchmark_repetitions={repetitions}"], seconds=600)
        taken = {}
        for run in json.loads(printed)["benchmarks"]:
            if run["run_type"] == "iteration" and not run.get("error_occurred"):
                rate = run.get("bytes_per_second")
                taken.setdefault(run["run_name"].split("/iterations:")[0], []).append(
                    rate / 1e6 if rate else run["real_time"])
        for name in names:
            if name in taken:
                report.take(name, taken[name])



def busy_percent(seconds=2):
    """How busy others keep the processors."""
    def ticks():
        numbers = list(map(int, Path("/proc/stat").read_text().split("\n", 1)[0].split()[1:9]))
        return sum(numbers), numbers[3] + numbers[4]
    total, idle = ticks()
    time.sleep(seconds)
    total_after, idle_after = ticks()
    return 100 * (1 - (idle_after - idle) / (total_after - total))


def versions(*packages):
    found = subprocess.run(["dpkg-query", "-W", "-f", "${Package} ${Version}\n", *packages], capture_output=True,
                           text=True).stdout
    return found.split("\n")[:-1]


def commit():
    try:
        changed = output_of(["git", "status", "--porcelain", "--untracked-files=no", "--", "src", "bench", "cmake"])
        return output_of(["git", "rev-parse", "--short", "HEAD"]).strip() + (" with changes" if changed else "")
    except (Fault, OSError):
        return "unknown"


def machine(peers):
    processor = next((line.split(":")[1].strip() for line in Path("/proc/cpuinfo").read_text().splitlines()
                      if line.startswith("model name")), platform.machine())
    return {"processor": processor, "cores": os.cpu_count(), "kernel": platform.release().split("-")[0],
            "system": platform.freedesktop_os_release()["PRETTY_NAME"],
            "date": time.strftime("%Y-%m-%d %H:%M UTC", time.gmtime()),
            "commit": commit(), "busy": busy_percent(), "versions": versions(*peers)}
