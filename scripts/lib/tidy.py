"""Runs clang-tidy over the sources of src/, in parallel, and remembers which files were clean.

A file is clean for as long as it, the files of this project that it includes, the checks, the compiler command and
the version of clang-tidy stay as they were; the marks lie in build/lint.
"""

import concurrent.futures
import hashlib
import json
import os
import re
import subprocess
import sys
from pathlib import Path

TIDY = "clang-tidy-19"
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
    """The compiler command of each source under src/."""
    entries = json.loads(database.read_text())
    found = {Path(entry["file"]): entry["command"] for entry in entries}
    return {path: command for path, command in sorted(found.items())
            if path.is_relative_to(root / "src") and path.suffix == ".cpp" and path.is_file()}


def lint(path, database):
    result = subprocess.run([TIDY, "-p", str(database.parent), "--quiet", str(path)],
                            stdin=subprocess.DEVNULL, capture_output=True, text=True)
    noise = re.compile(r"^\d+ warnings?( and \d+ errors?)? generated\.$|^Suppressed |^Use -header-filter")
    errors = "\n".join(line for line in result.stderr.splitlines() if not noise.match(line))
    return result.returncode, "\n".join(filter(None, [result.stdout.strip(), errors.strip()]))


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
        mark = fingerprints.of(path, "\n".join([version, checks, command]))
        fresh.add(mark)
        if not (marks / mark).exists():
            todo[path] = marks / mark
    for stale in marks.iterdir():
        if stale.name not in fresh:
            stale.unlink()
    print(f"tidy: {len(sources)} sources, {len(todo)} to look at", flush=True)
    return lint_all(root, todo, database)


def lint_all(root, todo, database):
    failures = 0
    with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count() or 2) as pool:
        running = {pool.submit(lint, path, database): path for path in todo}
        for job in concurrent.futures.as_completed(running):
            status, text = job.result()
            if status == 0:
                todo[running[job]].touch()
            else:
                failures += 1
                print(f"tidy: {running[job].relative_to(root)}\n{text}", flush=True)
    print(f"tidy: {failures} files with findings", flush=True)
    return failures


if __name__ == "__main__":
    here = Path(__file__).resolve().parent.parent.parent
    sys.exit(1 if run(here, Path(sys.argv[1]).resolve()) else 0)
