"""Sound and video, each on a desktop of its own."""

import json
import os
import subprocess

from bench_table import row
from waiting import Fault

AIMS = {
    "start of a recording, as the key's callback sees it": "10",
    "processor time for a second of sound, without the engine": "20",
    "processor time per second when nothing records any more": "0",
    "recorded pass of a window of 1920x1080": "40",
}


def measured(build, what, times, screen="1920x1080x24"):
    done = subprocess.run(["scripts/on-desktop", build / "bench/media-bench", what, str(times)], capture_output=True,
                          text=True, stdin=subprocess.DEVNULL, env={**os.environ, "TAVRELON_SCREEN": screen})
    if done.returncode != 0:
        raise Fault(f"media-bench {what} ended with status {done.returncode}: {done.stderr[-1000:]}")
    return [row(line["name"], line["unit"], line["values"], AIMS.get(line["name"], ""))
            for line in map(json.loads, done.stdout.splitlines())]


def sound_and_video(build, times):
    return (measured(build, "sound", times) + measured(build, "video", times)
            + measured(build, "video", times, "3840x2160x24"))
