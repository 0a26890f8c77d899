"""The one table that the measurements end in."""

import math
import statistics
from dataclasses import dataclass


@dataclass
class Row:
    name: str
    unit: str
    median: float
    p99: float | None = None    # absent where there is one value only
    aim: str = ""


def row(name, unit, values, aim=""):
    """A row of the distribution of `values`, which are in the row's unit."""
    ordered = sorted(values)
    if not ordered:
        return Row(name, unit, math.nan, math.nan, aim)
    rank = math.ceil(0.99 * len(ordered)) - 1
    return Row(name, unit, statistics.median(ordered), ordered[rank], aim)


def rate_row(name, unit, values, aim=""):
    """The same for rates, of which the bad ones are the low ones."""
    made = row(name, unit, [-value for value in values], aim)
    made.median, made.p99 = -made.median, -made.p99
    return made


def shown(value):
    if value is None:
        return ""
    if math.isnan(value):
        return "none"
    if float(value).is_integer():
        return f"{value:.0f}"
    return f"{value:.3g}" if abs(value) < 100 else f"{value:.0f}"


def table(rows):
    cells = [["what", "unit", "median", "p99", "aim"]]
    cells += [[each.name, each.unit, shown(each.median), shown(each.p99), each.aim] for each in rows]
    widths = [max(len(line[column]) for line in cells) for column in range(5)]
    lines = []
    for line in cells:
        lines.append("  ".join(text.rjust(width) if 2 <= column <= 3 else text.ljust(width)
                               for column, (text, width) in enumerate(zip(line, widths))).rstrip())
    lines.insert(1, "  ".join("-" * width for width in widths))
    return "\n".join(lines)
