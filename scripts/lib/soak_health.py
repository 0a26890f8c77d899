"""What a long run costs: memory, threads, descriptors and files, which must come to rest."""

import os
import re
import statistics
from dataclasses import astuple, dataclass
from pathlib import Path

from waiting import Fault

MEGABYTE = 1024
# What may come on top of the first steps: caches of fonts and pictures, and what happens to be open at the moment.
ALLOWANCE = {"memory": 8 * MEGABYTE, "threads": 3, "descriptors": 8, "files": 30}
KINDS_THAT_STAY = {"", ".json", ".jpg", ".settings"}
FEWEST = 12  # samples; fewer tell nothing


@dataclass
class Sample:
    memory: int  # kB of its own; its share of libraries depends on who else is running
    threads: int
    descriptors: int
    files: int


class Health:
    def __init__(self, pid, home, ignored):
        self.pid, self.home, self.samples = pid, home, []
        self.allowance = {name: most for name, most in ALLOWANCE.items() if name not in ignored}
        self.passing_at_first = self._passing_files()

    def take(self):
        proc = Path(f"/proc/{self.pid}")
        memory = int(re.search(r"^Anonymous:\s+(\d+)", (proc / "smaps_rollup").read_text(), re.MULTILINE).group(1))
        files = sum(len(names) for folder in ("config", "data") for _, _, names in os.walk(self.home / folder))
        self.samples.append(Sample(memory, len(os.listdir(proc / "task")), len(os.listdir(proc / "fd")), files))

    def _passing_files(self):
        """Files where nothing should stay, and those that a write leaves that was not brought to its end."""
        passing = {path for folder in ("runtime", "tmp") for path in (self.home / folder).rglob("*")}
        return passing | {path for folder in ("config", "data") for path in (self.home / folder).rglob("*")
                          if path.is_file() and path.suffix not in KINDS_THAT_STAY}

    def _medians(self, samples):
        return Sample(*(int(statistics.median(column)) for column in zip(*map(astuple, samples))))

    def judge(self):
        """Compares the last third with the second one; in the first one caches fill."""
        left = self._passing_files() - self.passing_at_first
        if left:
            raise Fault(f"the program left files behind: {', '.join(map(str, left))}")
        if len(self.samples) < FEWEST:
            return
        third = len(self.samples) // 3
        early, late = self._medians(self.samples[third:2 * third]), self._medians(self.samples[2 * third:])
        for name, allowance in self.allowance.items():
            if getattr(late, name) > getattr(early, name) + allowance:
                raise Fault(f"{name} went from {getattr(early, name)} to {getattr(late, name)} within the run")

    def summary(self):
        first, last = self.samples[0], self.samples[-1]
        return (f"memory {first.memory // MEGABYTE} to {last.memory // MEGABYTE} MB, threads {first.threads} to "
                f"{last.threads}, descriptors {first.descriptors} to {last.descriptors}, files {last.files}")
