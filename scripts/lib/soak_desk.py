"""The desktop of a soak run: the program, its model service, fields to write in, and what surrounds them."""

import contextlib
import itertools
import json
import re
import signal
import subprocess
import time
from pathlib import Path

import screen
from dashboard import Dashboard
from keyboard import Keyboard
from programs import Program, StandIn, Tavrelon
from soak_fields import LAYOUTS, Field
from soak_log import Log
from sound import SoundServer, install_recogniser
from waiting import Fault, wait_for

HOTKEY = "Shift+Alt+Super+l"
SILENCE = 3.0  # seconds after which a recording ends
DICTATED, ASKED = "hello my dear friend", "tell me a long story"  # what the recogniser understands
REST = 2.3  # seconds; after an answer or an error the next request waits until the last one has left the stage


class Desk:
    def __init__(self, build, output, home):
        self.build, self.output, self.home = build, output, Path(home)
        self.editor_config = self.home / "editors"
        (self.editor_config / "featherpad").mkdir(parents=True)
        (self.editor_config / "featherpad" / "fp.conf").write_text("[text]\nappendEmptyLine=false\n")
        self.keyboard = Keyboard()
        self.counter = itertools.count(1)
        self.layout, self.group = "us", 0
        self.hotkey = HOTKEY
        self.fields = [Field(kind, self) for kind in ("mousepad", "featherpad", "xterm")]
        self.free_at = time.monotonic()
        self.running = contextlib.ExitStack()
        self.surroundings = {}

    def __enter__(self):
        try:
            self.start_programs()
            self.restart_tray()
            for field in self.fields:
                field.open()
            self.fields[0].focus()
        except BaseException:
            self.__exit__()
            raise
        return self

    def start_programs(self):
        self.sound = self.running.enter_context(SoundServer(self.output / "sound.log"))
        install_recogniser(self.build, self.home, [DICTATED, ASKED])
        self.service = self.running.enter_context(
            StandIn(self.build / "tests/support/tavrelon-stand-in-service", self.output / "service.log"))
        # Pictures of the screen have tests of their own, and cost a busy machine most.
        settings = {"screenshotMode": "none", "enableImagePromptEnhancement": False,
                    "voiceDictationSilenceTimeoutSeconds": SILENCE, "voiceInputSilenceTimeoutSeconds": SILENCE}
        environment = {**self.sound.environment, **self.own_folders(),
                       "TAVRELON_ALLOW_DEBUGGER": "1"}  # its memory and descriptors are counted
        self.tavrelon = self.running.enter_context(
            Tavrelon(self.build / "src/tavrelon", self.output / "tavrelon.log", self.home, self.service.port, settings,
                     environment))
        self.log, self.dashboard = Log(self.tavrelon), Dashboard(self.tavrelon, self.keyboard)
        self.tavrelon.wait_until_live()

    def __exit__(self, *_):
        for program in (*(field.program for field in self.fields), *self.surroundings.values()):
            if program:
                program.process.send_signal(signal.SIGCONT)
                program.stop()
        self.running.close()

    def own_folders(self):
        """Folders in which nobody but the program leaves anything, so that what it forgets is seen."""
        folders = {"XDG_RUNTIME_DIR": self.home / "runtime", "TMPDIR": self.home / "tmp"}
        for folder in folders.values():
            folder.mkdir(mode=0o700)
        return {name: str(folder) for name, folder in folders.items()}

    # What the program does

    def mark(self):
        return len(self.tavrelon.written())

    def wait_for_line(self, pattern, mark, seconds=20):
        return self.tavrelon.wait_for_line(pattern, mark, seconds)

    def wait_until_free(self):
        """Until the last request has left the stage."""
        time.sleep(max(0.0, self.free_at - time.monotonic()))

    def press_when_free(self, chord):
        """Presses a hotkey; gives the place in the log before it."""
        self.wait_until_free()
        mark = self.mark()
        self.keyboard.press(chord)
        return mark

    def begin(self):
        mark = self.press_when_free(self.hotkey)
        self.wait_for_hotkey("Starting text listening", mark)
        return mark

    def commit(self, mark):
        self.keyboard.press(self.hotkey)
        self.wait_for_hotkey("Committing text input", mark)

    def wait_for_hotkey(self, line, mark):
        self.wait_for_line(rf"\[Hotkey\] {line}", mark)

    def settings(self):
        return json.loads((self.home / "config/Tavrelon/tavrelon.settings").read_text(encoding="utf-8"))

    def are_hotkeys_on(self):
        return self.settings().get("hotkeysEnabled", True)

    def flip_switch(self):
        """Presses the hotkey of the master switch, and sees that it did its work."""
        was_on = self.are_hotkeys_on()
        self.keyboard.press("Shift+Alt+Super+k")
        wait_for("the master switch", lambda: self.are_hotkeys_on() != was_on, seconds=5)

    def rest(self):
        self.free_at = time.monotonic() + REST

    def wait_for_answer(self, text):
        wait_for(f"the answer {text!r} in the history", lambda: self.tavrelon.newest_answer() == text, 30)
        self.rest()

    def wait_for_failure(self, mark):
        self.wait_for_line(r"(Processing error|Error processing).*: .+", mark, seconds=40)
        self.rest()

    def expect_heard(self, text, with_picture=False):
        """Sees that the model service was asked this, and with a picture where there must be one."""
        asked = [message for message in self.service.user_messages() if message.startswith(text)]
        if not asked:
            raise Fault(f"the service heard {self.service.user_messages()!r} instead of {text!r}")
        if with_picture and "image_url" not in json.dumps(self.service.control("requests")):
            raise Fault("the service was shown no picture")

    # What surrounds it

    def set_layout(self, layout, group):
        done = screen.run("setxkbmap", "-layout", layout)
        if done.returncode != 0:
            raise Fault(f"setxkbmap: {done.stderr}")
        self.keyboard.use_group(group)
        self.layout, self.group = layout, group
        time.sleep(0.3)  # applications take the new map in their own time

    def typed(self, places):
        """What the keys at these places give in the layout at hand."""
        plain = self.layout == "us,ru" and self.group == 0
        return places if plain else places.translate(LAYOUTS[self.layout])

    def set_clipboard(self, text):
        subprocess.run(["xclip", "-selection", "clipboard", "-i"], input=text.encode(), timeout=10, check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def clipboard(self, target="UTF8_STRING"):
        done = subprocess.run(["xclip", "-selection", "clipboard", "-o", "-t", target], capture_output=True, timeout=10)
        return done.stdout.decode(errors="replace")

    def restart(self, name, command):
        old = self.surroundings.pop(name, None)
        if old:
            old.stop()
        self.surroundings[name] = Program(command, self.output / f"{name}.log", {"HOME": str(self.home)})

    def restart_tray(self):
        self.restart("tint2", ["tint2"])

    def restart_window_manager(self):
        ready = self.output / "window-manager-ready"
        ready.unlink(missing_ok=True)
        self.restart("openbox", ["openbox", "--replace", "--startup", f"touch '{ready}'"])
        wait_for("the new window manager", ready.exists)
        time.sleep(0.3)

    def restore_sound(self):
        if self.sound.process.poll() is None:
            self.sound.process.send_signal(signal.SIGCONT)
        else:
            self.sound.start()

    # What must always hold

    def check(self):
        if self.tavrelon.process.poll() is not None:
            raise Fault(f"the program ended with status {self.tavrelon.process.returncode}:\n{self.tavrelon.written()[-3000:]}")
        wait_for("no key held", lambda: not self.keyboard.held(), seconds=5)
        wait_for("no modifier held", lambda: not self.keyboard.modifiers(), seconds=5)
        wait_for("an end of the recordings", lambda: self.sound.recordings() == 0, seconds=10)
        wait_for("an end of what works in the background", self.is_alone, seconds=10)

    def is_alone(self):
        """Whether no child and no thread of a recording is left."""
        tasks = [task for task in Path(f"/proc/{self.tavrelon.process.pid}/task").iterdir()]
        names = [(task / "comm").read_text(encoding="utf-8").strip() for task in tasks]
        children = [(task / "children").read_text(encoding="utf-8") for task in tasks]
        return not any(children) and not any(name.startswith(("audio input", "speech")) for name in names)
