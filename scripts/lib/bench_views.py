"""How quickly overlays and the prompt box come and go, and what they cost."""

import time

import bench_rest
import screen
from bench_run import output_of
from bench_table import Row, Theme
from waiting import Fault

PROMPT = "shift+alt+super+p"
OVERLAY = "880 470 200 80"  # where an overlay stands when no caret is known, on the 1920 by 1080 of scripts/bench
REST = 0.4                  # seconds between two showings

OVERLAY_BUILT = "first key press after the start to overlay on the screen"
OVERLAY_SHOWN = "key press to overlay on the screen"
OPENED = "key press to prompt box with the focus"
CLOSED = "Escape to the focus back in the window"
MEMORY = "memory, all views built and hidden (PSS)"
OWN = "memory of its own, all views built and hidden"
WAKE_UPS = "wake-ups a minute, all views hidden"
FACES = ("listening", "voice", "video recording", "video processing", "auto-reply", "processing", "completed", "hidden")
FRAME = "a display of 60 Hz adds up to 16.7 ms"


def face_row(face):
    return f"processor, face '{face}'"


ROWS = [
    Row(OVERLAY_BUILT, "ms", "The overlay is built for it; until then nobody pays for its memory.", aim=50, limit=FRAME),
    Row(OVERLAY_SHOWN, "ms", "Until the pixels have changed.", aim=10, limit=FRAME),
    Row(OPENED, "ms", "Until the next key goes into the box.", aim=100, limit=FRAME),
    Row(CLOSED, "ms", "Until the next key goes into the window that had the focus before.", aim=20,
        limit="the window manager decides it"),
    Row(MEMORY, "MB", "The same measure as at rest, after everything was shown once.", aim=30,
        limit=bench_rest.QML_ALONE, missed="what is not in the next row are pages of Qt's libraries, of which a part "
        "is shared as soon as another Qt 6 program runs"),
    Row(OWN, "MB"),
    Row(WAKE_UPS, "", "Hidden views must not go on animating.", aim=0),
    *(Row(face_row(face), "%", "Of one core, drawn without a graphics card." if face != "hidden" else
          "Afterwards, with the overlay hidden.", aim=0 if face == "hidden" else 4,
          missed="it moves 25 times a second and the processor draws it; runs on one machine differ by a fifth")
      for face in FACES),
]


def taken(probe, command):
    answer = probe.ask(command)
    if answer == "nothing":
        raise Fault(f"'{command}' came to nothing")
    return int(answer) / 1e6


def overlay(probe, tavrelon):
    mark = len(tavrelon.written())
    shown = taken(probe, f"frame {screen.HOTKEY} 5000 {OVERLAY}")
    tavrelon.wait_for_line(r"\[Hotkey\] Starting text listening", mark)
    probe.strike("Escape")
    time.sleep(REST)
    return shown


def prompt_box(probe):
    opened = taken(probe, f"focus gone {PROMPT} 5000")
    time.sleep(REST)
    closed = taken(probe, "focus back Escape 5000")
    time.sleep(REST)
    return opened, closed


def measure_views(bench, report):
    times = bench.extent.requests
    with report.step(OVERLAY_BUILT, OVERLAY_SHOWN, OPENED, CLOSED, MEMORY, OWN, WAKE_UPS), bench.home() as home, \
            bench.key_probe() as probe, bench.product(home, "views", {"screenshotMode": "none"}) as tavrelon:
        tavrelon.wait_until_live()
        report.take(OVERLAY_BUILT, [overlay(probe, tavrelon)])
        report.take(OVERLAY_SHOWN, [overlay(probe, tavrelon) for _ in range(times)])
        opened, closed = zip(*(prompt_box(probe) for _ in range(times)))
        report.take(OPENED, opened)
        report.take(CLOSED, closed)
        bench_rest.take(bench, report, tavrelon.process.pid, MEMORY, OWN, WAKE_UPS)


def measure(bench, report):
    measure_views(bench, report)
    with report.step(*map(face_row, FACES)):
        for line in output_of([bench.build / "bench/face-cost", bench.extent.settle]).splitlines():
            face, share = line.rsplit(" ", 1)
            report.take(face_row(face), [float(share)])


THEME = Theme("views", "What you see", "The overlay says at once that the hotkey was heard, the prompt box takes what "
              "you type and gives the focus back. Afterwards they are hidden, not gone, and must cost nothing.", ROWS,
              measure)
