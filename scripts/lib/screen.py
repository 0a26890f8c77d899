"""Keys, windows and pictures of an X display, through the command line tools that a script has."""

import subprocess

from waiting import Fault, wait_for

HOTKEY = "shift+alt+super+l"
BETWEEN_KEYS = 40  # milliseconds, a quick typist


def run(*command, timeout=20):
    return subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=timeout)


def answer(*command):
    """What a tool prints; a Fault if it fails."""
    done = run(*command)
    if done.returncode != 0:
        raise Fault(f"{command[0]}: {done.stderr.strip()}")
    return done.stdout.strip()


def press(*keys):
    """Presses keys one after the other, each a chord such as "ctrl+s"."""
    if keys:
        done = run("xdotool", "key", "--delay", str(BETWEEN_KEYS), *keys)
        if done.returncode != 0:
            raise Fault(f"xdotool could not press {' '.join(keys)}: {done.stderr.strip()}")


def type_text(text):
    done = run("xdotool", "type", "--delay", str(BETWEEN_KEYS), "--", text, timeout=60)
    if done.returncode != 0:
        raise Fault(f"xdotool could not type: {done.stderr.strip()}")


def window_named(part):
    found = run("xdotool", "search", "--onlyvisible", "--name", part).stdout.split()
    return found[0] if found else None


def size_of(window):
    size = dict(line.split("=") for line in answer("xdotool", "getwindowgeometry", "--shell", window).splitlines())
    return int(size["WIDTH"]), int(size["HEIGHT"])


def focus(window):
    run("xdotool", "windowactivate", window)
    wait_for(f"the focus in window {window}", lambda: run("xdotool", "getwindowfocus", "-f").stdout.strip() == window
             or run("xdotool", "getactivewindow").stdout.strip() == window)


def picture(path):
    done = run("import", "-window", "root", str(path))
    if done.returncode != 0:
        raise Fault(f"no picture could be taken: {done.stderr.strip()}")
