"""bench.py BUILD OUTPUT [--quick]: all measurements on the display at hand, as one table."""

import json
import os
import subprocess
import sys
import tempfile
from pathlib import Path

import bench_dashboard
import bench_fields
import bench_keys
import bench_media
import bench_process
import bench_requests
import bench_views
from bench_table import row, table
from programs import Tavrelon
import bench_generation
from waiting import Fault

AIMS = {
    "textDifference, 20 000 Latin": "2",
    "textDifference, 20 000 Chinese and emoji": "2",
    "history of 20 long entries scrolled, longest frame": "50",
}


class Extent:
    """How much is measured."""

    def __init__(self, quick):
        self.keys, self.flood = (200, 1000) if quick else (2000, 10_000)
        self.starts, self.requests = (3, 2) if quick else (20, 12)
        self.settle, self.idle = (3, 10) if quick else (10, 60)
        self.repetitions = 5 if quick else 40
        self.recordings = 2 if quick else 10


def pure_parts(build, extent):
    done = subprocess.run([build / "bench/tavrelon-bench", "--benchmark_format=json", "--benchmark_min_time=0.05",
                           f"--benchmark_repetitions={extent.repetitions}"],
                          capture_output=True, text=True, check=True, stdin=subprocess.DEVNULL)
    taken, units = {}, {}
    for run in json.loads(done.stdout)["benchmarks"]:
        if run["run_type"] == "iteration":
            name = run["run_name"].split("/iterations:")[0]
            taken.setdefault(name, []).append(run["real_time"])
            units[name] = run["time_unit"]
    return [row(name, units[name], values, AIMS.get(name, "")) for name, values in taken.items()]


def whole_program(build, output, extent):
    service = bench_requests.TimedService()

    def product(home, name, settings=None):
        return Tavrelon(build / "src/tavrelon", output / f"{name}.log", home, service.port, settings)

    rows = []
    with tempfile.TemporaryDirectory(prefix="tavrelon-bench.", ignore_cleanup_errors=True) as home, \
            bench_keys.KeyProbe(build / "bench/key-probe") as probe:
        before = bench_keys.without_the_program(probe, extent.keys)
        with product(home, "text-only", {"screenshotMode": "none"}) as tavrelon:
            tavrelon.wait_until_live()
            rows += bench_process.idle(tavrelon.process.pid, extent.settle, extent.idle)
            rows += bench_keys.with_the_program(probe, extent.keys, extent.flood, before)
            rows += bench_requests.requests(probe, tavrelon, service, extent.requests)
        with product(home, "views", {"screenshotMode": "none"}) as tavrelon:
            tavrelon.wait_until_live()
            rows += bench_views.views(probe, tavrelon, extent.requests, extent.settle, extent.idle)
            rows += bench_views.faces(build / "bench/face-cost", extent.settle)
        with product(home, "picture") as tavrelon:
            tavrelon.wait_until_live()
            rows += bench_requests.pictured_requests(probe, tavrelon, service, extent.requests)
        rows.insert(0, bench_process.start(tavrelon, extent.starts))
    return rows + bench_generation.rows(build, extent)


def main(build, output, *options):
    build, output = Path(build), Path(output)
    output.mkdir(parents=True, exist_ok=True)
    extent = Extent("--quick" in options)
    load = os.getloadavg()[0]
    rows = whole_program(build, output, extent) + bench_fields.rows(build / "bench/field-probe", extent.requests)
    rows += bench_dashboard.dashboard(build / "bench/dashboard-bench", extent.settle)
    rows += bench_media.sound_and_video(build, extent.recordings)
    rows += pure_parts(build, extent)
    text = table(rows)
    (output / "table.txt").write_text(text + "\n")
    print(text)
    if load > 0.5:
        print(f"\nThe machine was busy when this began (load {load:.1f}): the figures are worse than they could be.")
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main(*sys.argv[1:]))
    except Fault as fault:
        print(f"bench: {fault}", file=sys.stderr)
        sys.exit(1)
