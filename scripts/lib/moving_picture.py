"""Pictures as one animated PNG, of which each frame holds only what has changed since the one before."""

import struct
import subprocess
import zlib
from dataclasses import dataclass
from pathlib import Path

CHANNELS = 3
MILLISECONDS = 1000


@dataclass
class Frame:
    path: Path
    seconds: float


def pixels(path):
    """Width, height and the rows of a picture, three bytes to a pixel."""
    def ask(*command):
        return subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, timeout=60, check=True).stdout
    width, height = map(int, ask("identify", "-format", "%w %h", str(path)).split())
    data = ask("convert", str(path), "-depth", "8", "rgb:-")
    row = width * CHANNELS
    return width, height, [data[row * y:row * (y + 1)] for y in range(height)]


def changed(before, after):
    """Left, top, right and bottom of what differs; one pixel where nothing does, since a frame must have one."""
    rows = [y for y, (old, new) in enumerate(zip(before, after)) if old != new]
    if not rows:
        return 0, 0, 1, 1
    lefts, rights = [], []
    for y in rows:
        old, new = before[y], after[y]
        differing = [x for x in range(len(new)) if old[x] != new[x]]
        lefts.append(differing[0] // CHANNELS)
        rights.append(differing[-1] // CHANNELS + 1)
    return min(lefts), rows[0], max(rights), rows[-1] + 1


def compressed(rows):
    """Rows as PNG stores them, each as it is or as what differs from the one above, whichever is smaller."""
    plain = b"".join(b"\0" + row for row in rows)
    above = [bytes(len(rows[0])), *rows]
    up = b"".join(b"\2" + bytes((new - old) & 255 for old, new in zip(above[y], row)) for y, row in enumerate(rows))
    return min((zlib.compress(each, 9) for each in (plain, up)), key=len)


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def write_animation(frames, path):
    """Writes it so that it plays without end; gives its size in bytes."""
    width, height, shown = pixels(frames[0].path)
    out = [b"\x89PNG\r\n\x1a\n", chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)),
           chunk(b"acTL", struct.pack(">II", len(frames), 0))]
    sequence = 0
    for number, frame in enumerate(frames):
        _, _, rows = pixels(frame.path)
        left, top, right, bottom = changed(shown, rows) if number else (0, 0, width, height)
        out.append(chunk(b"fcTL", struct.pack(">IIIIIHHBB", sequence, right - left, bottom - top, left, top,
                                              round(frame.seconds * MILLISECONDS), MILLISECONDS, 0, 0)))
        sequence += 1
        data = compressed([row[left * CHANNELS:right * CHANNELS] for row in rows[top:bottom]])
        if number:
            out.append(chunk(b"fdAT", struct.pack(">I", sequence) + data))
            sequence += 1
        else:
            out.append(chunk(b"IDAT", data))
        shown = rows
    out.append(chunk(b"IEND", b""))
    path.write_bytes(b"".join(out))
    return path.stat().st_size
