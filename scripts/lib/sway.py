"""What sway tells of its windows and bindings, and takes as commands."""

import json
import os
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


def focused_title():
    return next((node["name"] or "" for node in nodes() if node["focused"] and node.get("pid")), "")


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
