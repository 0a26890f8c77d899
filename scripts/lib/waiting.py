"""Waits that end when something is so, never because time went by."""

import sys
import time


class Fault(Exception):
    """Something did not happen that should have; the text says what."""


def wait_for(what, condition, seconds=10.0, pause=0.02):
    """Returns the first true value of `condition()`; past the bound a Fault names `what`."""
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise Fault(f"{what}: not within {seconds:g} s")
        time.sleep(pause)


def run(main, name, advice=""):
    """Ends the process by `main` of the command line's arguments: a fault is told on a line of its own, and status 1."""
    try:
        sys.exit(main(*sys.argv[1:]))
    except Fault as fault:
        sys.exit(f"{name}: {fault}{advice}")
