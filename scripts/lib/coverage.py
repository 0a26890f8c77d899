"""coverage.py FORM <SUMMARY: writes into docs/quality.md how many lines of each folder of src/ the tests of this form reach,
and prints the table with the files that were reached least."""

import json
import re
import sys
from collections import defaultdict
from pathlib import Path

DOCUMENT = Path("docs/quality.md")
REACHED_BY = {"logic": "reached by the tests without a desktop", "all": "reached by all tests"}
LEAST_SHOWN = 15


def table_of(folders, heading):
    rows = [f"| folder | lines | {heading} |", "|---|---|---|"]
    covered, count = map(sum, zip(*folders.values()))
    for folder, (reached, lines) in [*sorted(folders.items()), ("all", (covered, count))]:
        rows.append(f"| `{folder}` | {lines} | {100 * reached / max(lines, 1):.0f} % |")
    return "\n".join(rows)


def main():
    root = Path.cwd() / "src"
    folders, files = defaultdict(lambda: [0, 0]), []
    for file in json.load(sys.stdin)["data"][0]["files"]:
        path = Path(file["filename"])
        if root not in path.parents:
            continue
        lines = file["summary"]["lines"]
        folder = str(path.parent.relative_to(root)).replace(".", "main.cpp")
        folders[folder][0] += lines["covered"]
        folders[folder][1] += lines["count"]
        files.append((lines["percent"], lines["count"], str(path.relative_to(root))))
    table = table_of(folders, REACHED_BY[sys.argv[1]])
    text, places = re.subn(r"(?<=<!-- by scripts/coverage -->\n)(\|.*\n)*", lambda _: table + "\n", DOCUMENT.read_text())
    if places != 1:
        sys.exit(f"coverage: {DOCUMENT} has no place for the table")
    DOCUMENT.write_text(text)
    print(table + "\n")
    for percent, count, name in sorted(files)[:LEAST_SHOWN]:
        print(f"{percent:5.0f} % of {count:4} lines  {name}")


if __name__ == "__main__":
    main()
