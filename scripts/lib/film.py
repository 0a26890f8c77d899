"""film.py BUILD FRAMES FILM: plays the main job in an editor and writes it as an animated PNG.

A frame is taken after each thing that the user does, and its length is written beside it: the film is as quick as a
person, however slow the machine is that takes it. The keys that are pressed stand below the picture."""

import os
import shutil
import sys
import tempfile
import time
from pathlib import Path

import screen
from moving_picture import Frame, write_animation
from programs import Editor, StandIn, Tavrelon
from waiting import Fault, wait_for

KEYS = "Shift + Alt + Super + L"
LETTER, GLANCE, LOOK, READ = 0.07, 0.4, 0.9, 2.2  # seconds of the film
BEFORE = "Hi Zoe,\n\n\n\nthe numbers are late again, send them today!!\n"
REQUEST = "thank her for the report, in french"
THANKS = "Merci beaucoup pour ton rapport, il est très clair 🙏"
SELECTED = "the numbers are late again, send them today!!"
POLITE = "Could you send me the numbers today, please? Thank you!"
BAND = 44  # pixels below the picture


class Camera:
    def __init__(self, folder):
        self.folder, self.frames = folder, []

    def take(self, seconds, caption=""):
        path = self.folder / f"{len(self.frames):03}.png"
        screen.picture(path)
        screen.answer("convert", str(path), "-gravity", "south", "-background", "#16181d", "-splice", f"0x{BAND}",
                      "-font", "DejaVu-Sans-Bold", "-pointsize", "17", "-fill", "#f4f4f6", "-annotate", "+0+12", caption or " ",
                      f"png24:{path}")
        self.frames.append(Frame(path, seconds))


def press_hotkey(tavrelon, camera, line, caption):
    mark = len(tavrelon.written())
    screen.press(screen.HOTKEY)
    tavrelon.wait_for_line(line, mark)
    wait_for("the overlay", lambda: screen.window_named("^Tavrelon$"), 20)
    time.sleep(0.6)  # until it has been faded in
    camera.take(LOOK, caption)


def ask(tavrelon, service, camera, answer, typed=""):
    service.answer_with({"content": answer, "delayMs": 1500})
    known = tavrelon.newest_answer()
    press_hotkey(tavrelon, camera, r"\[Hotkey\] Starting text listening", KEYS)
    for begin in range(0, len(typed), 2):
        screen.type_text(typed[begin:begin + 2])
        time.sleep(0.1)
        camera.take(2 * LETTER, "Type what you want, where you are")
    if typed:
        camera.take(GLANCE, "Type what you want, where you are")
    press_hotkey(tavrelon, camera, r"\[Hotkey\] Committing text input", KEYS + ", again")
    wait_for("another answer in the history", lambda: tavrelon.newest_answer() not in (None, known), 30)
    time.sleep(0.6)  # until the editor has drawn it


def play(tavrelon, service, camera, editor):
    screen.answer("xdotool", "windowsize", "--sync", editor.window, "100%", "100%")
    screen.press("ctrl+Home", "Down", "Down")
    time.sleep(3)  # until the editor has told the accessibility bus where its caret is
    camera.take(LOOK, "A request, in any text field")
    ask(tavrelon, service, camera, THANKS, REQUEST)
    camera.take(READ, "The answer stands in its place")
    time.sleep(2.5)  # until the overlay has left
    screen.press("ctrl+Home", *["Down"] * 4, "Home", "shift+End")
    time.sleep(0.3)
    camera.take(LOOK, "Or select what is to be rewritten")
    ask(tavrelon, service, camera, POLITE)
    camera.take(READ, "Nothing to copy, no window to switch to")
    return BEFORE.replace("\n\n", f"\n\n{THANKS}", 1).replace(SELECTED, POLITE)


def set_up_editor(home):
    """Letters that can be read where the film is shown small, and nothing beside them."""
    folder = Path(home) / "editors" / "glib-2.0" / "settings"
    folder.mkdir(parents=True)
    (folder / "keyfile").write_text("[org/gnome/TextEditor]\nuse-system-font=false\ncustom-font='DejaVu Sans 15'\n"
                                    "spellcheck=false\nhighlight-current-line=false\nrestore-session=false\nstyle-variant='light'\n")
    os.environ["GSETTINGS_BACKEND"] = "keyfile"


def main(build, frames, film):
    build, frames = Path(build), Path(frames)
    shutil.rmtree(frames, ignore_errors=True)
    frames.mkdir(parents=True)
    screen.run("xsetroot", "-solid", "#5b6b8a")
    with tempfile.TemporaryDirectory(prefix="tavrelon-film.", ignore_cleanup_errors=True) as home, \
            StandIn(build / "tests/support/tavrelon-stand-in-service", frames / "service.log") as service, \
            Tavrelon(build / "src/tavrelon", frames / "tavrelon.log", home, service.port) as tavrelon:
        tavrelon.wait_until_live()
        set_up_editor(home)
        letter = Path.home() / "Letter to Zoe.txt"
        letter.write_text(BEFORE, encoding="utf-8")
        with Editor("gnome-text-editor", letter, frames / "editor.log", home) as editor:
            camera = Camera(frames)
            expected = play(tavrelon, service, camera, editor)
            if (after := editor.saved_text(expected)) != expected:
                raise Fault(f"the field holds {after!r}")
    size = write_animation(camera.frames, Path(film))
    print(f"film: {len(camera.frames)} frames, {sum(frame.seconds for frame in camera.frames):.0f} s, {size // 1000} KB in {film}")


if __name__ == "__main__":
    try:
        main(*sys.argv[1:])
    except Fault as fault:
        print(f"film: {fault}", file=sys.stderr)
        sys.exit(1)
