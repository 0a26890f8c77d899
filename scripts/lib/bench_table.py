"""Rows, what was measured for them, and the table that is printed and kept while the measuring goes on."""

import json
import math
import re
import statistics
import subprocess
from contextlib import contextmanager
from dataclasses import asdict, dataclass


@dataclass(frozen=True)
class Row:
    """One figure: what it is, and all that is to be said about it."""
    name: str
    unit: str
    about: str = ""
    aim: float | None = None  # the figure is to be no larger
    aimed: str = "median"     # which of the figures, "median" or "p99"
    within: float = 0         # what the measuring itself may add to the figure
    limit: str = ""           # the physical or intended bound; {row} stands for the figure of another row
    missed: str = ""          # why the aim is missed, where that is known
    rate: bool = False        # of a rate the low values are the bad ones


@dataclass(frozen=True)
class Theme:
    """Rows that belong together, and measure(bench, report), which takes them."""
    key: str
    title: str
    about: str
    rows: list[Row]
    measure: object


@dataclass
class Figures:
    median: float | None = None
    p99: float | None = None  # absent where there is one value only
    failure: str = ""         # why there is no figure
    absent: str = ""          # what is not installed, where that is why

    def meets(self, row):
        """Whether the aim is met; None without a figure or an aim."""
        figure = getattr(self, row.aimed)
        if row.aim is None or figure is None:
            return None
        return figure <= row.aim + row.within


class Absent(Exception):
    """A program that is not installed; the text names it."""


def figures_of(values, rate=False):
    ordered = sorted(values, reverse=rate)
    if not ordered or not all(map(math.isfinite, ordered)):
        raise ValueError("no figure came of it")
    p99 = ordered[math.ceil(0.99 * len(ordered)) - 1] if len(ordered) > 1 else None
    return Figures(statistics.median(ordered), p99)


def shown(value):
    if value is None:
        return ""
    if float(value).is_integer() or abs(value) >= 100:
        return grouped(round(value))
    return f"{value:.3g}"


def grouped(number):
    """Thousands apart, from 10 000 on."""
    return f"{number:,}".replace(",", " ") if abs(number) >= 10_000 else str(number)


def aim_shown(row):
    if row.aim is None:
        return ""
    return ("p99 " if row.aimed == "p99" else "") + shown(row.aim) + (f" +{shown(row.within)}" if row.within else "")


def reason_of(error):
    if isinstance(error, subprocess.TimeoutExpired):
        return f"not done within {error.timeout:g} s"
    text = " ".join(str(error).split()) or type(error).__name__
    return text if len(text) <= 300 else text[:140] + " ... " + text[-150:]


class Report:
    """Prints each row as soon as it has its figure, and keeps it in FOLDER/table.txt and FOLDER/figures.jsonl."""

    def __init__(self, themes, folder, machine):
        self.rows = {row.name: row for theme in themes for row in theme.rows}
        self.figures = {}
        self.widths = [max(len(row.name) for row in self.rows.values()), 11, 9, 9, 9]
        self.table = open(folder / "table.txt", "w", encoding="utf-8")
        self.kept = open(folder / "figures.jsonl", "w", encoding="utf-8")
        self.kept.write(json.dumps(machine) + "\n")
        self.line("what", "unit", "median", "p99", "aim", "limit")

    def line(self, *cells):
        columns = [text.rjust(width) if 2 <= number <= 4 else text.ljust(width)
                   for number, (text, width) in enumerate(zip(cells, self.widths))]
        self.say("  ".join(columns + list(cells[len(self.widths):])).rstrip())

    def say(self, text):
        print(text, flush=True)
        print(text, file=self.table, flush=True)

    def keep(self, name, figures):
        row = self.rows[name]
        self.figures[name] = figures
        self.kept.write(json.dumps({"name": name, **asdict(figures)}) + "\n")
        self.kept.flush()
        if figures.median is None:
            self.line(name, row.unit, "absent" if figures.absent else "FAILED", "", aim_shown(row),
                      figures.absent or figures.failure)
        else:
            self.line(name, row.unit, shown(figures.median), shown(figures.p99), aim_shown(row),
                      limit_shown(row, self.rows, self.figures) + (" MISSED" if figures.meets(row) is False else ""))

    def take(self, name, values):
        self.keep(name, figures_of(values, self.rows[name].rate))

    @contextmanager
    def step(self, *names):
        """One measurement, of which these rows come. If it goes wrong they tell why, and the run goes on."""
        missing = Figures(failure="no figure came of it")
        try:
            yield
        except Absent as program:
            missing = Figures(absent=f"{program} is not installed")
        except Exception as error:  # whatever it is: the other rows are still to be had
            missing = Figures(failure=reason_of(error))
        for name in names:
            if name not in self.figures:
                self.keep(name, missing)


def limit_shown(row, rows, figures):
    """The row's limit with the figures of the rows that it names; nothing while one of them is not known."""
    for name in re.findall(r"\{(.+?)\}", row.limit):
        if name not in figures or figures[name].median is None:
            return ""
    return re.sub(r"\{(.+?)\}", lambda match: f"{shown(figures[match.group(1)].median)} {rows[match.group(1)].unit}",
                  row.limit)


def kept_figures(folder):
    """The machine and the figures of the last whole run."""
    with open(folder / "figures.jsonl", encoding="utf-8") as kept:
        machine, *lines = map(json.loads, kept)
    return machine, {line.pop("name"): Figures(**line) for line in lines}
