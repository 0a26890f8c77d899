"""Sound and video, each on a desktop of its own."""

import json

from bench_run import output_of
from bench_table import Row, Theme

SOUND = [
    Row("start of a recording, as the key's callback sees it", "ms", "The key is held up no longer; the microphone "
        "opens meanwhile.", aim=10),
    Row("processor time for a second of sound, without the engine", "ms", "Taking the sound in and handing it on; "
        "understanding it is the engine's work.", aim=20),
    Row("processor time per second when nothing records any more", "ms", "The measuring program's own timer takes up "
        "to 0.1.", aim=0, within=0.1),
]


def pass_rows(size, aim=None):
    return [Row(f"recorded pass of a window of {size}", "ms", "One picture of the window, taken and made a JPEG.", aim),
            Row(f"24 frames of a window of {size}", "MiB", "The most that one recording holds, of a busy window; large "
                "windows are made smaller first.")]


VIDEO = {"1920x1080": pass_rows("1920x1080", aim=40), "3840x2160": pass_rows("3840x2160")}


def take(bench, report, what, size, rows):
    with report.step(*(row.name for row in rows)):
        printed = output_of(["scripts/on-desktop", bench.build / "bench/media-bench", what, bench.extent.recordings],
                            environment={"TAVRELON_SCREEN": size + "x24"})
        for line in map(json.loads, printed.splitlines()):
            report.take(line["name"], line["values"])


def measure(bench, report):
    take(bench, report, "sound", "1920x1080", SOUND)
    for size, rows in VIDEO.items():
        take(bench, report, "video", size, rows)


THEME = Theme("media", "Voice and video", "Recording must not hold up the keys, and must not make the machine slow "
              "while it goes on.", SOUND + [row for rows in VIDEO.values() for row in rows], measure)
