"""applications.py FOLDER [DOCUMENT | --progress]: the table of applications from what the tests left in FOLDER.

Prints it, writes it as the document, or prints how far the random requests have come.
"""

import re
import sys
from pathlib import Path

COLUMNS = ["application", "value", "selection", "typed request", "selection request", "by accessibility", "in place",
           "caret", "undo"]
NAMES = {
    "mousepad": "mousepad (GTK 3)",
    "gnome-text-editor": "gnome-text-editor (GTK 4)",
    "featherpad": "featherpad (Qt 5)",
    "qt6-editor": "an editor of our own (Qt 6)",
    "chromium": "chromium, as it comes",
    "chromium-accessible": "chromium, with its accessibility switch",
    "xterm": "xterm",
    "lxterminal": "lxterminal (VTE)",
    "firefox": "firefox-esr",
    "libreoffice": "libreoffice writer",
    "falkon": "falkon (QtWebEngine)",
}
# What tests of their own see, by the name of the file that they leave when they have seen it.
PARAGRAPHS = "a request in one of several paragraphs is replaced there, and a selection over several is read and replaced"
SPECIAL = {
    "rich-chromium-rich": f"rich text in chromium, with its accessibility switch: {PARAGRAPHS}",
    "rich-firefox-rich": f"rich text in firefox-esr: {PARAGRAPHS}",
    "rich-libreoffice": f"libreoffice writer: {PARAGRAPHS}",
    "special-emacs": "emacs: a request is replaced, by its own keys",
    "special-gvim": "gvim: no key pastes in all its modes, so the request stays and the answer is left on the clipboard",
}
INTRODUCTION = """# Applications

What was seen when Tavrelon worked in each application on a private desktop under openbox. `scripts/applications` makes
this page; `scripts/test` makes the rows anew (those of Firefox and LibreOffice with `--all-apps`) and fails where an
application does more or less than is written here.

- **value**, **selection**: the text and the selected text of the field, emoji included, read by accessibility.
- **typed request**: hotkey, words, hotkey; the model got the words and the answer stands in their place.
- **selection request**: a selected word, hotkey, hotkey; the model got the word and the answer replaced it (in a
  terminal it is typed at the prompt). Where accessibility gives no selection, the copy shortcut does.
- **by accessibility**, **in place**: the answer to a selection request, and to a typed one, was written in one step
  and without the clipboard; elsewhere it is pasted.
- **caret**: the overlay is told where the caret is, and follows it to the right and to the next line;
  a click at that place finds the caret again (but in a terminal, where a click moves none).
- **undo**: how often to undo until the selection request never happened.

"""


def rows_of(folder):
    found = {}
    for name in NAMES:
        path = folder / name
        if path.exists():
            found[name] = path.read_text(encoding="utf-8").rstrip("\n").split("\t")
    return found


def with_notes(rows):
    """The rows with numbers for the reasons, and the reasons."""
    reasons, table = [], []
    for name, cells in rows.items():
        line = [NAMES[name]]
        for cell in cells[1:]:
            if cell.startswith("no: "):
                reason = cell[4:]
                if reason not in reasons:
                    reasons.append(reason)
                cell = f"no ({reasons.index(reason) + 1})"
            line.append(cell)
        table.append(line)
    return table, reasons


def special_of(folder):
    return [f"- {what}" for name, what in SPECIAL.items() if (folder / name).exists()]


def requests_of(folder):
    """For each application how many random requests came out right, and of how many, in its longest run."""
    counts = {}
    for path in folder.glob("*.requests-*"):
        name, wanted = path.name.split(".requests-")
        done = int(path.read_text(encoding="ascii") or 0)
        counts[name] = max(counts.get(name, (0, 0)), (int(wanted), done))
    return {name: (done, wanted) for name, (wanted, done) in counts.items()}


def each_of(counts):
    """In the table's order; one with an input method, such as "mousepad-pinyin", behind all without."""
    known = [name for name in NAMES if name in counts]
    names = known + sorted(counts.keys() - set(known))
    return ", ".join(f"{name} {counts[name][0]}" + (f" of {counts[name][1]}" if counts[name][0] < counts[name][1] else "")
                     for name in names)


def request_line(folder):
    """What came of the random requests; the circumstances stand in a file beside the counts."""
    counts = requests_of(folder)
    if not counts:
        return ""
    circumstances = folder / "requests.circumstances"
    when = f" ({circumstances.read_text(encoding='utf-8').strip()})" if circumstances.exists() else ""
    right = sum(done for done, _ in counts.values())
    wanted = sum(wanted for _, wanted in counts.values())
    verdict = "every field exactly right" if right == wanted else f"{right} of them exactly right before the first fault"
    return f"{wanted} random requests{when}, {verdict}: {each_of(counts)}."


def as_text(folder):
    table, reasons = with_notes(rows_of(folder))
    widths = [max(len(line[i]) for line in [COLUMNS, *table]) for i in range(len(COLUMNS))]
    lines = ["  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip() for line in [COLUMNS, *table]]
    lines += [f"({number}) it {reason}" for number, reason in enumerate(reasons, 1)]
    return "\n".join([*lines, *special_of(folder), request_line(folder)]).rstrip()


def as_document(folder, former):
    table, reasons = with_notes(rows_of(folder))
    lines = ["| " + " | ".join(line) + " |" for line in [COLUMNS, ["---"] * len(COLUMNS), *table]]
    notes = [f"{number}. It {reason}." for number, reason in enumerate(reasons, 1)]
    requests = request_line(folder)
    if not requests and (found := re.search(r"^\d+ random requests.*$", former, re.MULTILINE)):
        requests = found.group()  # of an earlier run
    special = ["", "Seen besides:", "", *special_of(folder)] if special_of(folder) else []
    return INTRODUCTION + "\n".join([*lines, "", "The reasons for each no:", "", *notes, *special]) + "\n" + (
        f"\n{requests}\n" if requests else "")


def main(folder, document=None):
    folder = Path(folder)
    if not folder.is_dir():
        print("No application was looked at.")
    elif document == "--progress":
        print(each_of(requests_of(folder)) or "starting", flush=True)
    elif document:
        former = Path(document).read_text(encoding="utf-8") if Path(document).exists() else ""
        Path(document).write_text(as_document(folder, former), encoding="utf-8")
    else:
        print(as_text(folder))


if __name__ == "__main__":
    main(*sys.argv[1:])
