"""The text of large documents, beside the tools that people use for it."""

import shutil
import subprocess
import tempfile
import time
from pathlib import Path

import documents
from bench_table import row

SENTENCE = "Sentence {} of the book: the ridge was ours alone, wind from the west, larks overhead."


def milliseconds(command, times):
    """How long the program runs, start included."""
    taken = []
    for _ in range(times):
        began = time.perf_counter()
        done = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, timeout=120, check=True)
        taken.append(1000 * (time.perf_counter() - began))
        if len(done.stdout) < 100_000:
            raise RuntimeError(f"{command[0]} gave {len(done.stdout)} bytes only")
    return taken


def readings(reader, times):
    sentences = [SENTENCE.format(number) for number in range(10_000)]
    made = {"pdf": documents.pdf(sentences), "rtf": documents.rtf(sentences * 2)[:1_000_000] + b"}",
            "html": documents.html("A book", sentences)}
    what = {"pdf": "200 pages of PDF", "rtf": "1 MB of RTF", "html": "1 MB of HTML"}
    peers = {"pdf": ["pdftotext", "{}", "-"], "rtf": ["unrtf", "--text", "{}"]}
    rows = []
    with tempfile.TemporaryDirectory(prefix="tavrelon-bench.") as folder:
        for kind, content in made.items():
            path = Path(folder) / f"book.{kind}"
            path.write_bytes(content)
            rows.append(row(f"text of {what[kind]}", "ms", milliseconds([reader, kind, str(path)], times)))
            if kind in peers and shutil.which(peers[kind][0]):
                command = [part.format(path) for part in peers[kind]]
                rows.append(row(f"text of {what[kind]}, by {command[0]}", "ms", milliseconds(command, times)))
    return rows
