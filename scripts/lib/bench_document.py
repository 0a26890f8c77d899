"""Writes performance.md and its plots from the figures of a run. Everything in it comes from the rows and the run."""

import bench_plots
from bench_table import aim_shown, limit_shown, shown

HEAD = """# Performance

`scripts/bench` makes this page, with all its figures and plots, in one run; do not edit it.

{machine}

**median** is the figure in the middle of all that were taken, **p99** the one that 99 of 100 stay within (the worst,
where fewer were taken). **aim** is what was set before anything was measured, in the same unit: no more than this. With
"p99" before it, it is an aim for that figure; "+" says what the measuring itself may add. A bold figure misses its aim.
**limit** is what nobody could do without: what the hardware, another program or a wait on purpose takes by itself.
"""


def machine_lines(machine):
    lines = [f"- {machine['processor']}, {machine['cores']} cores; {machine['system']}, kernel {machine['kernel']}; "
             "an X server in memory, 1920 by 1080, without a graphics card.",
             f"- {machine['date']}, commit {machine['commit']}.",
             f"- Installed beside it: {', '.join(machine['versions'])}."]
    if machine["busy"] > 5:
        lines.append(f"- **Others kept the processors {machine['busy']:.0f} % busy when the run began: these figures "
                     "are worse than they could be.**")
    return "\n".join(lines)


def cell(value, unit, bold=False):
    text = f"{shown(value)} {unit}".strip() if value is not None else ""
    return f"**{text}**" if bold and text else text


def table_line(row, rows, figures):
    found = figures.get(row.name)
    if not found or found.median is None:
        said = found.absent if found and found.absent else "**failed**" if found else "not measured"
        median, p99 = said, ""
    else:
        missed = found.meets(row) is False
        median = cell(found.median, row.unit, missed and row.aimed == "median")
        p99 = cell(found.p99, row.unit, missed and row.aimed == "p99")
    limit = limit_shown(row, rows, figures)
    return f"| {row.name} | {median} | {p99} | {aim_shown(row)} | {limit} |"


def explanations(theme):
    """What the rows mean, each said once for the rows that share it."""
    told = {}
    for row in theme.rows:
        if row.about:
            told.setdefault(row.about, []).append(row.name)
    return [f"- *{names[0]}*{' and those alike' if names[1:] else ''}: {about}" for about, names in told.items()]


def shortfalls(theme, figures):
    lines = []
    for row in theme.rows:
        found = figures.get(row.name)
        if found and found.failure:
            lines.append(f"- **Failed**: {row.name}: {found.failure}")
        elif found and found.meets(row) is False:
            lines.append(f"- **Missed**: {row.name}: {row.missed or 'the reason is not known yet'}.")
    return lines


def summary(themes, figures):
    """Met, missed and failed, in one paragraph."""
    with_aim = [(row, figures[row.name].meets(row)) for theme in themes for row in theme.rows if row.name in figures]
    met, missed = ([row.name for row, meets in with_aim if meets is wanted] for wanted in (True, False))
    failed = [name for name, each in figures.items() if each.failure]
    text = f"{len(met)} of {len(met) + len(missed)} aims are met."
    if missed:
        text += f" Missed: {'; '.join(missed)}."
    if failed:
        text += f" Failed: {'; '.join(failed)}."
    return text


def picture(folder, name, says, drawn):
    """The line that shows a plot, which is kept below the folder; nothing without a plot."""
    if not drawn:
        return []
    path = folder / "pictures" / f"performance-{name}.svg"
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(drawn, encoding="utf-8")
    return [f"![{says}](pictures/{path.name})", ""]


def write(folder, themes, machine, figures):
    """Writes the page and its pictures below the folder and gives the page's path."""
    rows = {row.name: row for theme in themes for row in theme.rows}
    plots = {"process": ("peers", "Start, memory and wake-ups of Tavrelon, CopyQ and KeePassXC",
                         bench_plots.peers(figures)),
             "fields": ("writing", "Time until a field holds 1 000 and 10 000 characters, by four ways",
                        bench_plots.writing(figures))}
    lines = [HEAD.format(machine=machine_lines(machine)), summary(themes, figures), ""]
    lines += picture(folder, "aims", "Each figure as a share of its aim, on a logarithmic axis",
                     bench_plots.aims(themes, figures))
    for theme in themes:
        lines += [f"## {theme.title}", "", theme.about, ""]
        lines += picture(folder, *plots[theme.key]) if theme.key in plots else []
        lines += ["| what | median | p99 | aim | limit |", "| --- | --: | --: | --: | --- |"]
        lines += [table_line(row, rows, figures) for row in theme.rows] + [""]
        for part in (explanations(theme), shortfalls(theme, figures)):
            lines += part + [""] if part else []
    page = folder / "performance.md"
    page.write_text("\n".join(lines).rstrip() + "\n", encoding="utf-8")
    return page
