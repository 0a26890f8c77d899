"""coverage.py <SUMMARY: prints the lines that were reached for each folder of src/, and the files that were reached least."""

import json
import sys
from collections import defaultdict
from pathlib import Path

LEAST_SHOWN = 15


def main():
    root = Path.cwd() / "src"
    folders, files = defaultdict(lambda: [0, 0]), []
    for file in json.load(sys.stdin)["data"][0]["files"]:
        path = Path(file["filename"])
        if root not in path.parents:
            continue
        lines = file["summary"]["lines"]
        folders[str(path.parent.relative_to(root))][0] += lines["covered"]
        folders[str(path.parent.relative_to(root))][1] += lines["count"]
        files.append((lines["percent"], lines["count"], str(path.relative_to(root))))
    print("| folder | lines reached |\n|---|---|")
    for folder, (covered, count) in sorted(folders.items()):
        print(f"| `{folder}` | {100 * covered / max(count, 1):.0f} % of {count} |")
    covered, count = map(sum, zip(*folders.values()))
    print(f"| all | {100 * covered / count:.0f} % of {count} |\n")
    for percent, count, name in sorted(files)[:LEAST_SHOWN]:
        print(f"{percent:5.0f} % of {count:4} lines  {name}")


if __name__ == "__main__":
    main()
