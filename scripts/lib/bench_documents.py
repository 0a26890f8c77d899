"""The text of large documents, beside the tools that people use for it."""

import shutil
import time
from pathlib import Path

import documents
from bench_run import output_of
from bench_table import Absent, Row, Theme
from waiting import Fault

SENTENCE = "Sentence {} of the book: the ridge was ours alone, wind from the west, larks overhead."
KINDS = {"pdf": "200 pages of PDF", "rtf": "1 MB of RTF", "html": "1 MB of HTML"}
PEERS = {"pdf": ["pdftotext", "{}", "-"], "rtf": ["unrtf", "--text", "{}"]}


def own_row(kind):
    return f"text of {KINDS[kind]}"


def peer_row(kind):
    return f"text of {KINDS[kind]}, by {PEERS[kind][0]}"


ROWS = []
for each in KINDS:
    ROWS.append(Row(own_row(each), "ms", "In a process of its own, so that a bad document can do no harm; its start is "
                    "counted, as with the others.", limit=f"{{{peer_row(each)}}}" if each in PEERS else ""))
    if each in PEERS:
        ROWS.append(Row(peer_row(each), "ms"))


def take(report, name, command, times):
    """How long the program runs, start included."""
    with report.step(name):
        if not shutil.which(command[0]):
            raise Absent(command[0])
        taken = []
        for _ in range(times):
            began = time.perf_counter()
            length = len(output_of(command, seconds=120))
            taken.append(1000 * (time.perf_counter() - began))
            if length < 100_000:
                raise Fault(f"{command[0]} gave {length} characters only")
        report.take(name, taken)


def measure(bench, report):
    sentences = [SENTENCE.format(number) for number in range(10_000)]
    made = {"pdf": documents.pdf(sentences), "rtf": documents.rtf(sentences * 2)[:1_000_000] + b"}",
            "html": documents.html("A book", sentences)}
    with bench.home() as folder:
        for kind, content in made.items():
            path = Path(folder) / f"book.{kind}"
            path.write_bytes(content)
            reader = bench.build / "src/tavrelon-document-reader"
            take(report, own_row(kind), [reader, kind, path], bench.extent.starts)
            if kind in PEERS:
                take(report, peer_row(kind), [part.format(path) for part in PEERS[kind]], bench.extent.starts)


THEME = Theme("documents", "Documents to learn from", "The text of long documents, beside the usual tools.", ROWS,
              measure)
