"""What sway tells of its windows and bindings, and takes as commands."""

import json
import os
import re
import subprocess

from waiting import Fault


def is_session():
    return bool(os.environ.get("SWAYSOCK"))


def ask(*arguments):
    done = subprocess.run(["swaymsg", *arguments], stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=20)
    if done.returncode != 0:
        raise Fault(f"swaymsg {' '.join(arguments)}: {done.stdout.strip() or done.stderr.strip()}")
    return done.stdout


def nodes(node=None):
    node = node or json.loads(ask("-t", "get_tree"))
    yield node
    for child in [*node["nodes"], *node["floating_nodes"]]:
        yield from nodes(child)


def focused():
    """The node of the window that has the keyboard; none while it is not a window's."""
    return next((node for node in nodes() if node["focused"] and node.get("pid")), {})


def focused_title():
    return focused().get("name") or ""


def picture_of_focused_window(path):
    node = focused()
    outer, content = node["rect"], node["window_rect"]
    place = f"{outer['x'] + content['x']},{outer['y'] + content['y']} {content['width']}x{content['height']}"
    subprocess.run(["grim", "-g", place, str(path)], stdin=subprocess.DEVNULL, timeout=20, check=True)


def difference(one, other):
    """Of two pictures of one size, from 0 to 1."""
    told = subprocess.run(["compare", "-metric", "RMSE", str(one), str(other), "null:"], stdin=subprocess.DEVNULL,
                          capture_output=True, text=True, timeout=20).stderr
    found = re.fullmatch(r"\S+ \((\S+)\)", told.strip())
    if not found:
        raise Fault(f"the pictures cannot be compared: {told}")
    return float(found.group(1))


class NextBinding:
    """The command of the first binding that is pressed from now on."""

    def __init__(self):
        self.process = subprocess.Popen(["swaymsg", "-m", "-t", "subscribe", '["binding"]'], stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, text=True)

    def command(self):
        try:
            return json.loads(self.process.stdout.readline())["binding"]["command"]
        finally:
            self.process.terminate()
            self.process.wait(10)
