"""bench.py BUILD OUTPUT [--quick] [--only THEME | --redraw]: all measurements on the display at hand, as one table."""

import argparse
import sys
import tempfile
from pathlib import Path

import bench_dashboard
import bench_document
import bench_documents
import bench_fields
import bench_generation
import bench_keys
import bench_logic
import bench_media
import bench_process
import bench_requests
import bench_run
import bench_table
import bench_views
from programs import Tavrelon

THEMES = [module.THEME for module in (bench_process, bench_keys, bench_requests, bench_views, bench_fields,
                                      bench_dashboard, bench_media, bench_generation, bench_documents, bench_logic)]
OTHERS = ("copyq", "keepassxc", "xdotool", "mousepad", "featherpad", "poppler-utils", "unrtf")
NOBODY = 9  # a port that nothing listens on, for those who make no request


class Extent:
    """How much is measured."""

    def __init__(self, quick):
        self.keys, self.flood = (200, 1000) if quick else (2000, 10_000)
        self.starts, self.requests = (3, 2) if quick else (20, 12)
        self.settle, self.rest, self.idle = (3, 3, 10) if quick else (10, 40, 60)
        self.repetitions = 5 if quick else 40
        self.recordings = 2 if quick else 10


class Bench:
    """What the measurements work with."""

    def __init__(self, build, output, extent):
        self.build, self.output, self.extent = build, output, extent

    def home(self):
        """A new folder for a `with` block."""
        return tempfile.TemporaryDirectory(prefix="tavrelon-bench.", ignore_cleanup_errors=True)

    def product(self, home, name, settings=None, port=NOBODY):
        return Tavrelon(self.build / "src/tavrelon", self.output / f"{name}.log", home, port, settings,
                        {"TAVRELON_ALLOW_DEBUGGER": "1"})  # its memory is measured

    def key_probe(self):
        return bench_keys.KeyProbe(self.build / "bench/key-probe")


def options(arguments):
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=Path)
    parser.add_argument("output", type=Path)
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--only", choices=[theme.key for theme in THEMES], action="append")
    parser.add_argument("--redraw", action="store_true")
    return parser.parse_args(arguments)


def measured(chosen, themes):
    """All themes; a run of its own, of which each part stands by itself."""
    machine = bench_run.machine(OTHERS)
    report = bench_table.Report(themes, chosen.output, machine)
    bench = Bench(chosen.build, chosen.output, Extent(chosen.quick))
    for theme in themes:
        report.say(f"-- {theme.title}")
        with report.step(*(row.name for row in theme.rows)):
            theme.measure(bench, report)
    if machine["busy"] > 5:
        report.say(f"\nOthers kept the processors {machine['busy']:.0f} % busy when this began: the figures are worse "
                   "than they could be.")
    return machine, report.figures


def main(arguments):
    chosen = options(arguments)
    themes = [theme for theme in THEMES if not chosen.only or theme.key in chosen.only]
    whole = len(themes) == len(THEMES) and not chosen.quick
    if not whole:
        chosen.output /= "part"
    chosen.output.mkdir(parents=True, exist_ok=True)
    if chosen.redraw:
        machine, figures = bench_table.kept_figures(chosen.output)
    else:
        machine, figures = measured(chosen, themes)
    page = bench_document.write(Path("docs") if whole else chosen.output, themes, machine, figures)
    failed = sum(bool(each.failure) for each in figures.values())
    print(f"\n{page} is written." + (f" Rows that failed: {failed}." if failed else ""))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
