"""soak.py BUILD OUTPUT MINUTES SEED: random users' actions on the display at hand, until the time is over or one fails."""

import random
import shutil
import sys
import tempfile
import time
from pathlib import Path

import screen
import soak_actions
import soak_dashboard
import soak_voice
from soak_desk import Desk
from soak_health import MEGABYTE, Health
from waiting import Fault, run


WEIGHTS = soak_actions.WEIGHTS | soak_voice.WEIGHTS | soak_dashboard.WEIGHTS


def steps(seed, fields):
    """The endless list of actions that belongs to a seed: the action, the field, and the dice of the action itself."""
    dice = random.Random(seed)
    actions, weights = list(WEIGHTS), list(WEIGHTS.values())
    while True:
        yield dice.choices(actions, weights)[0], dice.randrange(fields), random.Random(dice.getrandbits(64))


def take_step(desk, field, action, dice):
    desk.log.begin_step()
    field.focus()
    action(desk, dice, field)
    desk.check()
    desk.log.judge()


def warm_up(desk):
    """What is done first costs most: caches of fonts, the model of the recogniser."""
    dice = random.Random(0)
    soak_dashboard.look_at_all_pages(desk)
    for action in (soak_actions.text_request, soak_voice.dictation, soak_voice.video_request):
        take_step(desk, desk.fields[0], action, dice)


def take_steps(desk, health, end, seed):
    """Gives how many steps were done. A fault names the step."""
    done = 0
    for number, (action, index, dice) in enumerate(steps(seed, len(desk.fields)), 1):
        field = desk.fields[index]
        began = time.monotonic()
        try:
            take_step(desk, field, action, dice)
        except Fault as fault:
            screen.picture(desk.output / "fault.png")
            last_lines = "\n    ".join(desk.tavrelon.written().splitlines()[-20:])
            raise Fault(f"step {number}, {action.__name__} in {field.kind}: {fault}\n    {last_lines}") from None
        health.take()
        done += 1
        print(f"{number:4}  {time.monotonic() - began:5.1f} s  {action.__name__:24} {field.kind:11}{desk.layout:7}"
              f"{health.samples[-1].memory // MEGABYTE:4} MB", flush=True)
        if time.monotonic() > end:
            break
    return done


def main(build, output, minutes, seed):
    output = Path(output).resolve()
    shutil.rmtree(output, ignore_errors=True)
    output.mkdir(parents=True)
    print(f"seed {seed}, {float(minutes):g} minutes", flush=True)
    with tempfile.TemporaryDirectory(prefix="tavrelon-soak.", ignore_cleanup_errors=True) as home, \
            Desk(Path(build), output, home) as desk:
        # A sanitizer keeps what is freed, so that memory says nothing there.
        end = time.monotonic() + 60 * float(minutes)
        warm_up(desk)
        health = Health(desk.tavrelon.process.pid, Path(home), ["memory"] if Path(build).name != "release" else [])
        done = take_steps(desk, health, end, int(seed))
        health.judge()
        print(f"{done} steps right; {health.summary()}")
    status = desk.tavrelon.process.returncode
    if status != 0:
        raise Fault(f"the program ended with status {status} when asked to end")


if __name__ == "__main__":
    run(main, "soak", f"\n(replay with --seed {sys.argv[4]}; logs and a picture are in {sys.argv[2]}/)")
