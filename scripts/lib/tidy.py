"""Runs clang-tidy over the sources of src/, in parallel, and remembers which files were clean.

Nearly all of its time goes into the headers of libraries, which it walks anew for every source. So sources that are
compiled alike are looked at a dozen at a time, as one that includes them all; a batch that is not clean, or whose
sources do not go together, is halved.

A file is clean for as long as it, the files of this project that it includes, the checks, the compiler command and
the version of clang-tidy stay as they were; the marks lie in build/lint.
"""

import concurrent.futures
import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
import tempfile
from pathlib import Path

TIDY = "clang-tidy-19"
BATCH = 12  # larger ones gain little and leave a core idle at the end
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


class Fingerprints:
    """Hashes of source files together with everything of ours that they include."""

    def __init__(self, root):
        self.root = root
        self.direct = {}

    def direct_of(self, path):
        if path not in self.direct:
            data = path.read_bytes()
            names = INCLUDE.findall(data.decode("utf-8", "replace"))
            included = [found for name in names if (found := self.root / "src" / name).is_file()]
            self.direct[path] = (hashlib.sha256(data).hexdigest(), included)
        return self.direct[path]

    def of(self, path, salt):
        seen, waiting = set(), [path]
        while waiting:
            current = waiting.pop()
            if current not in seen:
                seen.add(current)
                waiting += self.direct_of(current)[1]
        parts = [f"{found.relative_to(self.root)} {self.direct_of(found)[0]}" for found in sorted(seen)]
        return hashlib.sha256("\n".join([salt, *parts]).encode()).hexdigest()


def commands(root, database):
    """The compiler's arguments, and its folder, for each source under src/."""
    entries = json.loads(database.read_text())
    found = {Path(entry["file"]): (entry["directory"], *arguments(entry)) for entry in entries}
    return {path: command for path, command in sorted(found.items())
            if path.is_relative_to(root / "src") and path.suffix == ".cpp" and path.is_file()}


def arguments(entry):
    """What all sources that are compiled alike have in common."""
    words = shlex.split(entry["command"])
    first = next(i for i, word in enumerate(words) if "clang++" in word) + 1
    named = words.index("-o")
    own = {named, named + 1, words.index("-c")}
    return [word for i, word in enumerate(words) if i >= first and i not in own and word != entry["file"]]


def lint(root, path, command):
    """The status and the text of clang-tidy for one source."""
    result = subprocess.run([TIDY, "--quiet", f"--config-file={root / '.clang-tidy'}", str(path), "--", *command[1:]],
                            cwd=command[0], stdin=subprocess.DEVNULL, capture_output=True, text=True)
    noise = re.compile(r"^\d+ warnings?( and \d+ errors?)? generated\.$|^Suppressed |^Use -header-filter")
    errors = "\n".join(line for line in result.stderr.splitlines() if not noise.match(line))
    return result.returncode, "\n".join(filter(None, [result.stdout.strip(), errors.strip()]))


def batches(todo, sources):
    """Lists of sources that are compiled alike."""
    alike = {}
    for path in todo:
        alike.setdefault(sources[path], []).append(path)
    return [paths[start:start + BATCH] for paths in alike.values() for start in range(0, len(paths), BATCH)]


def lint_together(root, paths, command):
    """Whether all of them are clean as one source."""
    with tempfile.TemporaryDirectory(dir=root / "build") as folder:
        together = Path(folder) / "batch.cpp"
        together.write_text("".join(f'#include "{path}"\n' for path in paths))
        return lint(root, together, command)[0] == 0


def run(root, database):
    """Returns the number of files with findings."""
    version = subprocess.run([TIDY, "--version"], capture_output=True, text=True, check=True).stdout
    checks = (root / ".clang-tidy").read_text()
    marks = root / "build" / "lint"
    marks.mkdir(parents=True, exist_ok=True)
    fingerprints = Fingerprints(root)
    todo, fresh = {}, set()
    sources = commands(root, database)
    if not sources:
        print(f"tidy: {database} names no source of src/", file=sys.stderr)
        return 1
    for path, command in sources.items():
        mark = fingerprints.of(path, "\n".join([version, checks, *command]))
        fresh.add(mark)
        if not (marks / mark).exists():
            todo[path] = marks / mark
    for stale in marks.iterdir():
        if stale.name not in fresh:
            stale.unlink()
    print(f"tidy: {len(sources)} sources, {len(todo)} to look at", flush=True)
    return lint_all(root, todo, sources)


def lint_all(root, todo, sources):
    def look_at(paths):
        """The findings of a batch, source by source. One that is not clean is halved until it is known what is not."""
        if len(paths) == 1:
            return {paths[0]: lint(root, paths[0], sources[paths[0]])}
        if lint_together(root, paths, sources[paths[0]]):
            return dict.fromkeys(paths, (0, ""))
        middle = len(paths) // 2
        return look_at(paths[:middle]) | look_at(paths[middle:])

    failures = 0
    with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count() or 2) as pool:
        for job in concurrent.futures.as_completed([pool.submit(look_at, paths) for paths in batches(todo, sources)]):
            for path, (status, text) in job.result().items():
                if status == 0:
                    todo[path].touch()
                else:
                    failures += 1
                    print(f"tidy: {path.relative_to(root)}\n{text}", flush=True)
    print(f"tidy: {failures} files with findings", flush=True)
    return failures


if __name__ == "__main__":
    here = Path(__file__).resolve().parent.parent.parent
    sys.exit(1 if run(here, Path(sys.argv[1]).resolve()) else 0)
