"""A document as its reader meets it: blocks, links, words set as code, headings and tables, each with its line."""

import re
from dataclasses import dataclass, field

COMMENT = re.compile(r"^<!-- not run: (.+) -->$")
LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")
CODE = re.compile(r"`([^`]+)`")


@dataclass
class Block:
    line: int
    text: str
    language: str = ""
    reason: str = ""  # why it is not run, as the document says right before it


@dataclass
class Document:
    name: str
    blocks: list = field(default_factory=list)
    links: list = field(default_factory=list)     # (line, target)
    codes: list = field(default_factory=list)     # (line, text)
    headings: list = field(default_factory=list)  # as anchors
    rows: list = field(default_factory=list)      # (line, cells, the cells of the head of the table)
    words: list = field(default_factory=list)     # (line, text), of all that is no block


def anchor(heading):
    return re.sub(r"[^\w\- ]", "", heading.lower()).strip().replace(" ", "-")


def read(name, text):
    document = Document(name)
    lines = text.split("\n")
    reason, head, at = "", [], 0
    while at < len(lines):
        line, number = lines[at], at + 1
        at += 1
        if found := COMMENT.match(line):
            reason = found.group(1)
            continue
        if line.startswith("```") or line.startswith("    ") and (number == 1 or not lines[number - 2].strip()
                                                                  or COMMENT.match(lines[number - 2])):
            body = []
            if line.startswith("```"):
                while at < len(lines) and not lines[at].startswith("```"):
                    body.append(lines[at])
                    at += 1
                at += 1
            else:
                body.append(line[4:])
                while at < len(lines) and lines[at].startswith("    "):
                    body.append(lines[at][4:])
                    at += 1
            document.blocks.append(Block(number, "\n".join(body), line.strip("` ") if line.startswith("```") else "", reason))
            reason = ""
            continue
        if line.strip():
            reason = ""
        if line.startswith("#"):
            document.headings.append(anchor(line.lstrip("#").strip()))
        if line.startswith("|"):
            cells = [cell.strip() for cell in line.strip("|\n ").split(" | ")]
            if not re.fullmatch(r"[|\s:-]+", line):
                document.rows.append((number, cells, head))
                head = head or cells
        else:
            head = []
        document.words.append((number, line))
    # Code and links may go over a line's end.
    whole = [(number, line) for number, line in document.words]
    starts, flat = [], ""
    for number, line in whole:
        starts.append((len(flat), number))
        # A pair of marks never spans an empty line or a table's row.
        flat += line + ("\n\n" if not line.strip() or line.startswith("|") else "\n")

    def line_of(place):
        return max((start, number) for start, number in starts if start <= place)[1]

    for paragraph in re.finditer(r"(?:[^\n]+\n)+", flat):
        for found in CODE.finditer(paragraph.group()):
            document.codes.append((line_of(paragraph.start() + found.start()), " ".join(found.group(1).split())))
        for found in LINK.finditer(paragraph.group()):
            document.links.append((line_of(paragraph.start() + found.start()), found.group(1)))
    return document
