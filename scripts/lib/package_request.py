"""package_request.py PROGRAM OUTPUT: does one request with an installed program and compares the saved file."""

import sys
import tempfile
from pathlib import Path

import screen
from demo_cases import FRENCH
from programs import Editor, StandIn, Tavrelon
from waiting import Fault, wait_for

REQUEST = "greet the team in french"


def main(program, output):
    output = Path(output)
    path = output / "request.txt"
    path.write_text("")
    with tempfile.TemporaryDirectory(prefix="tavrelon-package.", ignore_cleanup_errors=True) as home, \
            StandIn("build/package/tests/support/tavrelon-stand-in-service", output / "service.log") as service, \
            Tavrelon(program, output / "tavrelon.log", home, service.port) as tavrelon:
        tavrelon.wait_until_live()
        service.answer_with({"content": FRENCH})
        with Editor("mousepad", path, output / "mousepad.log", tavrelon.home) as editor:
            screen.press(screen.HOTKEY)
            tavrelon.wait_for_line(r"\[Hotkey\] Starting text listening")
            screen.type_text(REQUEST)
            screen.press(screen.HOTKEY)
            wait_for("the answer in the history", lambda: tavrelon.newest_answer() == FRENCH, 30)
            after = editor.saved_text(FRENCH)
            screen.picture(output / "request.png")
    if after != FRENCH:
        raise Fault(f"the field holds {after!r}")
    print(f"request        {REQUEST}\nfield after    {after!r}")


if __name__ == "__main__":
    try:
        main(*sys.argv[1:])
    except Fault as fault:
        print(f"package: {fault}", file=sys.stderr)
        sys.exit(1)
