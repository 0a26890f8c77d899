"""What the dashboard costs: its opening, its pages, its idle sky, and the memory that it takes and gives back."""

import json

from bench_run import output_of
from bench_table import Row, Theme

FRAME = "a display of 60 Hz adds up to 16.7 ms"
ROWS = [
    Row("dashboard, first opening to first frame", "ms", "With the loading of everything that draws it.", aim=150,
        limit=FRAME, missed="two thirds of it are the loading, as the next row shows"),
    Row("dashboard, opening to first frame", "ms", "Each later time.", aim=150, limit=FRAME),
    Row("dashboard, first showing of a page", "ms", "", aim=50, limit=FRAME),
    Row("dashboard, change of page", "ms", "To a page that was shown before.", aim=50, limit=FRAME),
    Row("dashboard, closing", "ms", "Window and views are taken down."),
    Row("dashboard, processor open and idle", "% of a core", "Its sky breathes while the window is active.", aim=10),
    Row("dashboard, processor minimised", "% of a core", "Nothing moves. The measuring program's own timer takes up to "
        "0.05.", aim=0, within=0.05),
    Row("dashboard, memory open (PSS)", "MB", "", aim=60, limit="38 MB: a bare QML window of Qt 6.4, tried apart",
        missed="it lies at its aim and differs by some tenths from run to run"),
    Row("dashboard, memory kept after closing (PSS)", "MB", "More than before the first opening.", aim=10,
        missed="mostly pages of the libraries that the first opening loaded; they stay mapped, and come back into use "
        "at the next opening"),
]


def measure(bench, report):
    with report.step(*(row.name for row in ROWS)):
        printed = output_of([bench.build / "bench/dashboard-bench", bench.extent.settle])
        for each in json.loads(printed.splitlines()[-1]):
            report.take(each["name"], each["values"])


THEME = Theme("dashboard", "The dashboard", "The window for settings and history. It is built when it is opened and "
              "destroyed when it is closed.", ROWS, measure)
