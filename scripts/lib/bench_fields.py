"""What reading, writing and picturing the field in front costs, in real editors."""

from pathlib import Path
from typing import NamedTuple

import screen
from bench_run import output_of
from bench_table import Row, Theme, grouped
from programs import EDITORS, OTHER_EDITORS, Editor
from waiting import wait_for

SIZES = {100: 3, 20_000: 5, 200_000: 20}  # characters, and the aim in milliseconds
LENGTHS = (1000, 10_000)


class Way(NamedTuple):
    """A way of writing."""
    called: str  # by field-probe
    about: str
    limit: str = ""


ACCESSIBILITY, REQUEST = "Tavrelon into a selection", "Tavrelon behind a typed request"
PASTE, TYPING = "bare clipboard paste", "xdotool type"
WAYS = {
    ACCESSIBILITY: Way("accessibility", "Put into the field by accessibility, then read back by Tavrelon to be sure.",
                       "the bus: some calls of 0.2 to 0.6 ms each, and the editor's own drawing"),
    REQUEST: Way("request", "By paste, between the waits that slow applications need.",
                 "170 ms of waits on purpose, of which 100 after the paste"),
    PASTE: Way("paste", "The text on the clipboard and one Control+V, nothing else: the floor of every paste."),
    TYPING: Way("typing", "Key by key, 1 ms apart, as scripts often do it.", "{length} ms of waits between the keys"),
}
WHOLE, FETCHED, ALONE, RATIO = (
    "window of 1920 by 1080 to JPEG", "window of 1920 by 1080, its pixels from the X server alone",
    "window of 1920 by 1080, encoding alone", "window of 1920 by 1080 to JPEG, beside the encoding alone")


def read_row(length, kind):
    return f"field read, {grouped(length)} characters, {kind}"


def written_row(length, kind, way):
    return f"{grouped(length)} characters into {kind}, {way}"


def replaced_row(kind):
    return f"a typed request of 200 characters, answered in place, {kind}"


def reading_rows(kind):
    bus = "1.2 to 4.2 ms: the bus, when asked call by call"
    return [*(Row(read_row(length, kind), "ms", "Text, selection and window, until Tavrelon has them; of "
                  "long texts the part around the caret.", aim=aim, limit=bus)
              for length, aim in SIZES.items()),
            Row(f"caret's place, {kind}", "ms", "Where the overlay is to stand.", limit="0.3 to 0.6 ms: the bus"),
            Row(f"field read, hung {kind}, first", "ms", "The application is stopped and answers nothing.", aim=300,
                limit="235 ms: as long as Tavrelon waits, on purpose"),
            Row(f"field read, hung {kind}, next", "ms", "By then it is known to hang.", aim=20)]


def writing_rows(kind):
    return [Row(written_row(length, kind, name), "ms", way.about, limit=way.limit.format(length=grouped(length)))
            for length in LENGTHS for name, way in WAYS.items()]


ROWS = [row for kind in EDITORS for row in reading_rows(kind) + writing_rows(kind)] + [
    *(Row(replaced_row(kind), "ms", "From the answer at hand until the field holds it in the place of the request, read "
          "back until it does.", aim=60, limit="2 160 ms by 200 Backspaces and a paste")
      for kind in EDITORS | OTHER_EDITORS),
    Row(WHOLE, "ms", "The picture that goes along with a request.", limit=f"{{{ALONE}}}: libjpeg-turbo alone"),
    Row(FETCHED, "ms", "The copy that the X server makes, through shared memory."),
    Row(ALONE, "ms", "libjpeg-turbo on the same pixels."),
    Row(RATIO, "times", "", aim=1.2, limit="1, if the pixels came for nothing",
        missed="beside the encoding, 8 MB of pixels are fetched from the X server and the pointer is drawn in")]


def measured(bench, *command):
    """The values of each measurement of the probe, by name."""
    values = {}
    for line in output_of([bench.build / "bench/field-probe", *command]).splitlines():
        name, value = line.split("\t")
        values.setdefault(name, []).append(float(value))
    return values


def editor_with(kind, length, folder):
    path = Path(folder) / f"{kind}-{length}.txt"
    line = "The quick brown fox jumps over the lazy dog and rests. \n"
    path.write_text((line * (length // len(line) + 1))[:length], encoding="utf-8")
    return Editor(kind, path, Path(folder) / "editor.log", folder)


def reading(bench, report, folder, kind):
    count = bench.extent.requests
    for length in SIZES:
        with report.step(read_row(length, kind)), editor_with(kind, length, folder):
            report.take(read_row(length, kind), measured(bench, "snapshot", count)["snapshot"])
    with report.step(f"caret's place, {kind}"), editor_with(kind, 100, folder):
        report.take(f"caret's place, {kind}", measured(bench, "caret", count)["caret"])
    names = [f"field read, hung {kind}, {when}" for when in ("first", "next")]
    with report.step(*names), editor_with(kind, 100, folder) as editor:
        taken = measured(bench, "hung", editor.process.pid)
        report.take(names[0], taken["first"])
        report.take(names[1], taken["next"])


def writing(bench, report, folder, kind):
    for length in LENGTHS:
        for way in WAYS:
            name = written_row(length, kind, way)
            with report.step(name), editor_with(kind, 0, folder):
                times = 1 if way == TYPING else bench.extent.requests
                report.take(name, measured(bench, "write", WAYS[way].called, length, times)["write"])


def replacing(bench, report, folder):
    for kind in EDITORS | OTHER_EDITORS:
        with report.step(replaced_row(kind)), editor_with(kind, 0, folder):
            report.take(replaced_row(kind), measured(bench, "write", "typed", 200, bench.extent.requests)["write"])


def pictures(bench, report, folder):
    with report.step(WHOLE, FETCHED, ALONE, RATIO), editor_with("mousepad", 20_000, folder) as editor:
        screen.press("F11")
        wait_for("the whole screen", lambda: "1920x1080" in screen.run("xdotool", "getwindowgeometry",
                                                                       editor.window).stdout)
        taken = measured(bench, "picture", bench.extent.requests)
        whole, alone = taken["window to JPEG"], taken["encoding alone"]
        report.take(FETCHED, taken["fetching alone"])
        report.take(ALONE, alone)
        report.take(WHOLE, whole)
        report.take(RATIO, [one / other for one, other in zip(whole, alone)])


def measure(bench, report):
    with bench.home() as folder:
        for kind in EDITORS:
            reading(bench, report, folder, kind)
            writing(bench, report, folder, kind)
        replacing(bench, report, folder)
        pictures(bench, report, folder)


THEME = Theme("fields", "Reading and writing fields", "In mousepad (GTK 3) and featherpad (Qt 5), on whole files. A "
              "text counts as written when the editor's field, read back by accessibility, holds exactly that text.",
              ROWS, measure)
