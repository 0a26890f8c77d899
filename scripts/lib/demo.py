"""demo.py BUILD OUTPUT: runs every case in every editor on the display at hand and compares the saved files."""

import tempfile
import time
from pathlib import Path

import demo_pictures
import screen
import session
from demo_cases import CASES
from programs import SHOWN, Editor, StandIn, Tavrelon
from waiting import Fault, run, wait_for

REST = 2.3  # seconds; after an answer or an error the next request waits until the last one has left the stage


class Stage:
    """The programs of one demonstration and the place for what they leave."""

    def __init__(self, service, tavrelon, output):
        self.service, self.tavrelon, self.output = service, tavrelon, output
        self.free_at = time.monotonic()

    def play(self, kind, number, case):
        stem = f"{kind}-{number}"
        path = self.output / f"{stem}.txt"
        path.write_text(case.before, encoding="utf-8")
        self.service.answer_with(case.answer)
        with Editor(kind, path, self.output / f"{kind}.log", self.tavrelon.home) as editor:
            session.press(*case.keys)
            mark = self.ask(case, stem)
            self.see_outcome(case, mark)
            after = editor.saved_text(case.after)
            session.picture(self.output / f"{stem}-after.png")
        return after

    def ask(self, case, stem):
        wait_for("the end of the last request", lambda: time.monotonic() >= self.free_at)
        mark = len(self.tavrelon.written())
        session.press(screen.HOTKEY)
        self.tavrelon.wait_for_line(r"\[Hotkey\] Starting text listening", mark)
        if case.typed:
            session.type_text(case.typed)
        session.picture(self.output / f"{stem}-before.png")
        session.press(screen.HOTKEY)
        self.tavrelon.wait_for_line(r"\[Hotkey\] Committing text input", mark)
        return mark

    def see_outcome(self, case, mark):
        heard = wait_for("a request at the service", self.service.user_messages, seconds=15)
        if not heard[0].startswith(case.request):
            raise Fault(f"the service heard {heard[0]!r} instead of {case.request!r}")
        if case.fails:
            self.tavrelon.wait_for_line(r"\[StateMachine\] (Processing error|Error processing): .*", mark, seconds=30)
        else:
            wait_for("the answer in the history", lambda: self.tavrelon.newest_answer() == case.answer["content"], 20)
        self.rest()

    def rest(self):
        self.free_at = time.monotonic() + REST


def show(label, text):
    lines = (text or "(empty)").split("\n")
    print(f"  {label:<14}{lines[0]}", *(" " * 16 + line for line in lines[1:]), sep="\n")


def play_all(stage):
    wrong = 0
    for kind in SHOWN:
        for number, case in enumerate(CASES, 1):
            print(f"\n{kind}: {case.name}")
            show("field before", case.before)
            show("request", f"{case.request}{'' if case.typed else '   (selected)'}")
            show("model answers", case.answer.get("content", f"status {case.answer.get('status')}"))
            try:
                after = stage.play(kind, number, case)
                show("field after", after)
                right = after == case.after
                if not right:
                    show("expected", case.after)
            except Fault as fault:
                session.picture(stage.output / f"{kind}-{number}-fault.png")
                show("fault", str(fault))
                right = False
            print("  right" if right else "  WRONG", flush=True)
            wrong += not right
    return wrong


def main(build, output):
    build, output = Path(build), Path(output)
    for left in output.glob("*"):
        left.unlink()
    output.mkdir(parents=True, exist_ok=True)
    if session.is_wayland():
        session.hands()  # sessions without a keyboard are others than those of people
    with tempfile.TemporaryDirectory(prefix="tavrelon-demo.", ignore_cleanup_errors=True) as home, \
            StandIn(build / "tests/support/tavrelon-stand-in-service", output / "service.log") as service, \
            Tavrelon(build / "src/tavrelon", output / "tavrelon.log", home, service.port) as tavrelon:
        tavrelon.wait_until_live()
        stage = Stage(service, tavrelon, output)
        wrong = play_all(stage) + demo_pictures.play(stage, build, show)
    total = len(SHOWN) * len(CASES) + 2
    print(f"\n{total - wrong} of {total} right; screenshots and logs are in {output}/")
    return 1 if wrong else 0


if __name__ == "__main__":
    run(main, "demo")
