"""The plots of docs/performance.md, as SVG on a light card of their own, so that they are legible on any page."""

import math
from xml.sax.saxutils import escape

import bench_fields
import bench_process
from bench_table import grouped, shown

FONT = "font-family='DejaVu Sans, Verdana, sans-serif'"
INK, FAINT, RULE, CARD = "#2b2f45", "#6b7391", "#d8ddee", "#f7f8fd"
OWN, OTHER, BAD = "#2f6fff", "#9aa3bd", "#d6336c"
WAY_COLOURS = dict(zip(bench_fields.WAYS, (OWN, "#8a5cf6", "#2a9d76", OTHER)))


class Picture:
    def __init__(self, title, about, width, height):
        self.width, self.height = width, height
        self.lines = [f"<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 {width} {height}' width='{width}' "
                      f"height='{height}'>", f"<title>{escape(title)}</title>",
                      f"<rect width='{width}' height='{height}' rx='14' fill='{CARD}'/>"]
        self.text(24, 34, title, size=17, weight="bold")
        self.text(24, 56, about, colour=FAINT)

    def text(self, x, y, text, colour=INK, size=12, anchor="start", weight="normal"):
        self.lines.append(f"<text x='{x:.1f}' y='{y:.1f}' {FONT} font-size='{size}' fill='{colour}' "
                          f"text-anchor='{anchor}' font-weight='{weight}'>{escape(text)}</text>")

    def line(self, x, y, other_x, other_y, colour=RULE, width=1):
        self.lines.append(f"<path d='M{x:.1f} {y:.1f}L{other_x:.1f} {other_y:.1f}' stroke='{colour}' "
                          f"stroke-width='{width}'/>")

    def bar(self, x, y, width, height, colour):
        self.lines.append(f"<rect x='{x:.1f}' y='{y:.1f}' width='{max(width, 1.5):.1f}' height='{height}' rx='2' "
                          f"fill='{colour}'/>")

    def dot(self, x, y, colour):
        self.lines.append(f"<circle cx='{x:.1f}' cy='{y:.1f}' r='4.5' fill='{colour}'/>")

    def written(self):
        return "\n".join([*self.lines, "</svg>"]) + "\n"


class LogAxis:
    """Powers of ten from left to right that hold all the values."""

    def __init__(self, values, left, right):
        self.first, self.last = math.floor(math.log10(min(values))), math.ceil(math.log10(max(values)))
        self.last = max(self.last, self.first + 1)
        self.left, self.step = left, (right - left) / (self.last - self.first)

    def place(self, value):
        return self.left + (math.log10(value) - self.first) * self.step

    def draw(self, picture, top, bottom, label):
        for power in range(self.first, self.last + 1):
            x = self.place(10 ** power)
            picture.line(x, top, x, bottom)
            picture.text(x, bottom + 16, label(10 ** power), FAINT, 11, "middle")


def aims(themes, figures):
    """Each figure as a share of its aim. Aims of nothing have no share."""
    groups = []
    for theme in themes:
        shares = [(row, getattr(figures[row.name], row.aimed) / row.aim) for row in theme.rows
                  if row.aim and row.name in figures and (getattr(figures[row.name], row.aimed) or 0) > 0]
        if shares:
            groups.append((theme, shares))
    if not groups:
        return None
    left, right, top = 430, 840, 92
    height = top + sum(26 + 18 * len(shares) for _, shares in groups) + 46
    picture = Picture("Measured, as a share of the aim", "Left of the line: better than aimed at. Each step is ten "
                      "times as much. Aims of zero are in the tables only.", 900, height)
    axis = LogAxis([share for _, shares in groups for _, share in shares] + [1], left, right)
    axis.draw(picture, top - 12, height - 40, lambda share: f"{100 * share:g} %")
    picture.line(axis.place(1), top - 12, axis.place(1), height - 40, INK, 1.5)
    picture.text(axis.place(1), top - 18, "aim", INK, 11, "middle")
    y = top
    for theme, shares in groups:
        y += 8
        picture.text(24, y + 4, theme.title, weight="bold")
        y += 18
        for row, share in shares:
            colour = OWN if share <= 1 else BAD
            picture.text(left - 14, y + 4, row.name, anchor="end", size=11)
            picture.line(axis.place(min(share, 1)), y, axis.place(max(share, 1)), y, colour, 1.2)
            picture.dot(axis.place(share), y, colour)
            y += 18
    return picture.written()


def peers(figures):
    """Start, memory and wake-ups, each with the other programs beside it."""
    panels = (("start to icon", "ms", bench_process.icon_row), ("memory (PSS)", "MB", bench_process.memory_row),
              ("memory of its own", "MB", bench_process.own_row),
              ("wake-ups a minute", "", bench_process.wake_ups_row))
    picture = Picture("Start, memory and rest, beside other programs in the tray", "Shorter is better.", 900, 190)
    for number, (title, unit, row_of) in enumerate(panels):
        left = 24 + number * 217
        picture.text(left, 88, title, weight="bold")
        values = {who: figures[row_of(who)].median for who in bench_process.WHO if row_of(who) in figures}
        most = max([value for value in values.values() if value is not None], default=0) or 1
        for place, (who, value) in enumerate(values.items()):
            y = 102 + place * 26
            picture.text(left, y + 13, who, size=11)
            if value is None:
                picture.text(left + 76, y + 13, "not measured", FAINT, 11)
                continue
            picture.bar(left + 76, y, 75 * value / most, 18, OWN if who == "Tavrelon" else OTHER)
            picture.text(left + 84 + 75 * value / most, y + 13, f"{shown(value)} {unit}".strip(), size=11)
    return picture.written()


def writing(figures):
    """How long a text takes until the field holds it, by each way."""
    lines = []
    for kind in bench_fields.EDITORS:
        for length in bench_fields.LENGTHS:
            taken = {way: figures[name].median for way in bench_fields.WAYS
                     if (name := bench_fields.written_row(length, kind, way)) in figures
                     and figures[name].median}
            if taken:
                lines.append((f"{grouped(length)} characters, {kind}", taken))
    if not lines:
        return None
    left, right, top = 210, 850, 112
    bottom = top + 34 * len(lines)
    picture = Picture("Until the field holds the text", "Each step is ten times as long.", 900, bottom + 34)
    axis = LogAxis([value for _, taken in lines for value in taken.values()], left, right)
    axis.draw(picture, top - 14, bottom - 10, lambda value: f"{value:g} ms" if value < 1000 else f"{value / 1000:g} s")
    for number, (way, colour) in enumerate(WAY_COLOURS.items()):
        picture.dot(30 + number * 222, 80, colour)
        picture.text(40 + number * 222, 84, way, size=11)
    for number, (name, taken) in enumerate(lines):
        y = top + 34 * number
        picture.text(left - 14, y + 4, name, anchor="end", size=11)
        picture.line(axis.place(min(taken.values())), y, axis.place(max(taken.values())), y)
        for way, value in taken.items():
            picture.dot(axis.place(value), y, WAY_COLOURS[way])
    return picture.written()
