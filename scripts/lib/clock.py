"""A clock of the day that jumps, for one program; waits go by another clock and know nothing of it."""

from pathlib import Path

from waiting import Fault

DAY = 24 * 3600
LAG = 1.2  # seconds


class Clock:
    """`environment` gives the clock to a program."""

    def __init__(self, file):
        found = sorted(Path("/usr/lib").glob("*/faketime/libfaketimeMT.so.1"))
        if not found:
            raise Fault("libfaketime is not installed")
        self.file, self.days = Path(file), 0
        self.environment = {"LD_PRELOAD": str(found[0]), "FAKETIME_TIMESTAMP_FILE": str(file), "FAKETIME_CACHE_DURATION": "1",
                            "FAKETIME_DONT_FAKE_MONOTONIC": "1", "NO_FAKE_STAT": "1"}
        self.jump(0)

    def jump(self, days):
        """So many days away from the true time; the program sees it within LAG."""
        self.days = days
        new = self.file.with_suffix(".new")
        new.write_text(f"{days * DAY:+d}", encoding="utf-8")
        new.replace(self.file)  # the program reads it at any moment
