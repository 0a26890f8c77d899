"""Real applications with one field to write in, as a person at the keyboard meets them."""

import html
import os
import signal
import time
from pathlib import Path
from urllib.parse import unquote

import session
from programs import EDITORS, Program
from session import clipboard, front_title, set_clipboard
from waiting import Fault, wait_for

CHROMIUM = ["chromium", "--no-sandbox", "--user-data-dir={folder}/profile", "--no-first-run", "--disable-gpu",
            "--disable-dev-shm-usage", "--disable-background-networking", "--app=file://{folder}/page.html"]
if session.is_wayland():
    CHROMIUM[1:1] = ["--ozone-platform=wayland", "--password-store=basic"]
# What the toolkits do not take up by themselves.
NATIVE = {"QT_QPA_PLATFORM": "wayland", "MOZ_ENABLE_WAYLAND": "1"} if session.is_wayland() else {}
FIREFOX = ["firefox-esr", "--no-remote", "--profile", "{folder}/profile", "{folder}/page.html"]
SHIFTED = dict(zip("!@#$%^&*()_+QWERTYUIOP{}ASDFGHJKL:\"~|ZXCVBNM<>?", "1234567890-=qwertyuiop[]asdfghjkl;'`\\zxcvbnm,./"))
# The command, where one can see what the field holds, and how long its text takes no keys after its window has come.
KINDS = {
    "mousepad": (EDITORS["mousepad"] + ["{path}"], "file", 0.5),
    "gnome-text-editor": (["gnome-text-editor", "--standalone", "{path}"], "file", 1.5),
    "featherpad": (EDITORS["featherpad"] + ["{path}"], "file", 0.5),
    "qt6-editor": (["{build}/tools/stage/plain_editor", "{path}"], "file", 0.5),
    "chromium": (CHROMIUM, "title", 0.5),
    "chromium-accessible": (CHROMIUM[:1] + ["--force-renderer-accessibility"] + CHROMIUM[1:], "title", 0.5),
    "xterm": (["xterm", "-T", "field.txt", "-e", "{folder}/lines"], "lines", 1.0),
    "lxterminal": (["lxterminal", "--no-remote", "--title=field.txt", "-e", "{folder}/lines"], "lines", 1.0),
    "foot": (["foot", "-T", "field.txt", "{folder}/lines"], "lines", 1.0),
    "firefox": (FIREFOX, "title", 2.0),
    "chromium-rich": (CHROMIUM[:1] + ["--force-renderer-accessibility"] + CHROMIUM[1:], "title", 0.5),
    "firefox-rich": (FIREFOX, "title", 2.0),
    "falkon": (["falkon", "--private-browsing", "{folder}/page.html"], "title", 3.0),
    # In insert mode, as one writes.
    "gvim": (["gvim", "-f", "-u", "NONE", "-U", "NONE", "-c", "set title titlestring=field.txt nocp | startinsert!",
              "{path}"], "nothing", 1.0),
    # Its own chord for saving is two.
    "emacs": (["emacs", "-Q", "{path}", "--eval", "(setq frame-title-format \"field.txt\" make-backup-files nil)",
               "--eval", "(global-set-key (kbd \"C-s\") 'save-buffer)", "--eval", "(end-of-buffer)"], "file", 2.0),
    "libreoffice": (["libreoffice", "--writer", "--norestore", "--nologo", "-env:UserInstallation=file://{folder}/profile",
                     "{path}"], "copying", 3.0),
}
# A page with one text area, whose title tells what it holds once it has the focus. Browsers cut long titles, so only what
# a title would lose or what ends the text in it is encoded.
PAGE = """<!DOCTYPE html><meta charset=utf-8><title>loading</title>
<textarea id=t rows=12 cols=60 aria-label=field>%s</textarea><script>const t=document.getElementById('t');
const tell=()=>{document.title='field.txt:'+t.value.replace(/[\\s%%;]/g,encodeURIComponent)+';'};
t.addEventListener('focus',tell);t.addEventListener('input',tell);window.addEventListener('focus',
()=>t.focus());setTimeout(()=>t.focus(),300);</script>"""

# The same with rich text: an element for each paragraph, as in mail composers.
RICH_PAGE = """<!DOCTYPE html><meta charset=utf-8><title>loading</title>
<div id=t contenteditable style="width:600px;height:300px">%s</div><script>const t=document.getElementById('t');
const tell=()=>{document.title='field.txt:'+[...t.children].map(p=>p.textContent).join('\\n')
.replace(/[\\s%%;]/g,encodeURIComponent)+';'};
t.addEventListener('focus',tell);t.addEventListener('input',tell);window.addEventListener('focus',
()=>t.focus());setTimeout(()=>t.focus(),300);</script>"""


def let_keys_arrive():
    """The pause of a person between two thoughts. Editors take keys in their own time, and Qt sends typed keys on a detour
    over the accessibility bus but shortcuts not, so that a shortcut on the heels of a key overtakes it."""
    time.sleep(0.15)


class Application(Program):
    """It has the focus, with this text in its field."""

    def __init__(self, kind, keyboard, build, folder, text="", environment=None):
        self.kind, self.keyboard, self.folder = kind, keyboard, Path(folder)
        self.path = self.folder / "field.txt"
        command, self.shown_in, settling = KINDS[kind]
        self.refilled, self.earlier_lines = None, 0
        (self.folder / "profile").mkdir(parents=True)
        page = PAGE % html.escape(text)
        if kind.endswith("-rich"):
            page = RICH_PAGE % "".join(f"<p>{html.escape(line)}</p>" for line in text.splitlines())
        (self.folder / "page.html").write_text(page, encoding="utf-8")
        lines = self.folder / "lines"  # a program that takes lines, as a shell does, with the terminal's own line editing
        lines.write_text(f"#!/bin/sh\nstty iutf8\necho oneword\nexec cat >'{self.path}'\n")
        lines.chmod(0o700)
        if not self.is_terminal:
            self.path.write_text(text, encoding="utf-8")
        config = self.folder / "config"
        (config / "featherpad").mkdir(parents=True)
        # Without this featherpad adds a line end of its own to the text that it saves.
        (config / "featherpad" / "fp.conf").write_text("[text]\nappendEmptyLine=false\n")
        places = {"folder": self.folder, "path": self.path, "build": build}
        super().__init__([part.format(**places) for part in command], self.folder / "log",
                         {"GSK_RENDERER": "cairo", "QTWEBENGINE_DISABLE_SANDBOX": "1", "XDG_CONFIG_HOME": str(config),
                          **NATIVE, **(environment or {})})
        try:
            wait_for(f"{kind} in front", lambda: "field.txt" in front_title(), 60)
        except BaseException:
            self.stop()
            raise
        time.sleep(settling)
        if self.is_terminal and text:
            self.paste(text)

    def stop(self):
        self.signal(signal.SIGCONT)
        super().stop()

    @property
    def is_terminal(self):
        return self.kind in ("xterm", "lxterminal", "foot")

    @property
    def is_known_by_keys_only(self):
        """Whether the field cannot be read by accessibility, so that a request is what was typed."""
        return self.is_terminal or self.kind in ("chromium", "falkon")

    def signal(self, number):
        if self.process.poll() is None:
            os.kill(self.process.pid, number)

    def shown(self):
        if self.shown_in == "title":
            title = front_title()
            start = title.find(":") + 1
            end = title.find(";", start)
            # another window's, or cut off, which nobody is to take for the text
            return unquote(title[start:end]) if end >= 0 else f"the title: {title}"
        if self.shown_in == "nothing":  # until it is asked to write its file
            self.keyboard.press("Escape")
            for key in ("Shift+;", "w", "Return", "a"):
                self.keyboard.press(key)
            let_keys_arrive()
        if self.shown_in == "copying":
            self.keyboard.press("Control+a")
            self.keyboard.press("Control+c")
            let_keys_arrive()
            return clipboard()
        held = self.path.read_bytes() if self.path.exists() else b""
        return held[self.earlier_lines:].decode(errors="replace")

    def without_end(self, text):
        # Some end a file with a line break of their own, and so does a line.
        return text[:-1] if self.shown_in != "title" and text.endswith("\n") else text

    def comes_to_hold(self, expected, seconds):
        end = time.monotonic() + seconds
        while True:
            if self.shown_in == "file":
                self.keyboard.press("Control+s")
            try:
                wait_for("the field", lambda: self.without_end(self.shown()) in (expected, self.without_end(expected)), 0.7)
                return True
            except Fault:
                if time.monotonic() > end:
                    return False

    def saved(self, expected, seconds=10.0):
        """What the field holds in the end; waits for what is expected."""
        time.sleep(0.5)  # in which what must not come would come
        if self.shown_in == "lines":
            self.keyboard.press("Return")
        return expected if self.comes_to_hold(expected, seconds) else self.without_end(self.shown())

    def refill(self, before, after):
        """Replaces all the text, with the caret between the two parts. A terminal gets a new line instead, in which nothing
        can stand behind the caret."""
        self.refilled = [before, after]
        if self.is_terminal:
            self.keyboard.press("Return")
            let_keys_arrive()
            self.earlier_lines = self.path.stat().st_size
            self.paste(before)
            return
        self.keyboard.press("Control+a")
        self.paste(before + after)
        self.settle()
        for _ in characters(after):
            self.keyboard.press("Left")
        let_keys_arrive()

    def go_to(self, before, after):
        """Puts the caret between two parts of all the text, from its begin."""
        self.keyboard.press("Control+Home")
        for _ in characters(before):
            self.keyboard.press("Right")
        self.refilled = [before, after]
        let_keys_arrive()

    def go_to_end(self, before, after):
        """The same from its end."""
        self.keyboard.press("Control+End")
        for _ in characters(after):
            self.keyboard.press("Left")
        self.refilled = [before, after]
        let_keys_arrive()

    def note_at_end(self, text):
        self.refilled[1] += text

    def settle(self):
        """Waits until the application has taken what was typed, however busy the machine is."""
        let_keys_arrive()
        if self.shown_in in ("file", "title") and self.refilled and not self.comes_to_hold("".join(self.refilled), 20):
            raise Fault(f"{self.kind} does not take what is typed: {self.shown()!r}")

    def type(self, text):
        """Types characters of a US keyboard; what it lacks is pasted. Behind a refill it waits until the field holds them."""
        foreign = ""
        for character in [*text, None]:
            known = character is not None and (character in self.keyboard.places or character in SHIFTED or character == "\n")
            if character is not None and not known:
                foreign += character
                continue
            if foreign:
                self.note(foreign)
                self.paste(foreign)
                self.settle()
                foreign = ""
            if character is not None:
                self.note(character)
                self.keyboard.press("Return" if character == "\n" else
                                    f"Shift+{SHIFTED[character]}" if character in SHIFTED else character)
        self.settle()

    def compose(self, words):
        """Types words with an input method: strokes, with "<" for Backspace, and what comes of each."""
        for strokes, text in words:
            self.strike(strokes)
            self.note(text)
        self.settle()

    def strike(self, strokes):
        for stroke in strokes:
            self.keyboard.press({"<": "BackSpace", "\n": "Return"}.get(stroke, stroke))

    def note(self, text):
        if self.refilled:
            self.refilled[0] += text

    def paste(self, text):
        if not text:
            return
        set_clipboard(text, "primary" if self.kind == "xterm" else "clipboard")
        let_keys_arrive()
        self.keyboard.press({"xterm": "Shift+Insert", "lxterminal": "Control+Shift+v", "foot": "Control+Shift+v"}.get(self.kind, "Control+v"))
        let_keys_arrive()  # and the editor asks the clipboard's owner in its own time

    def select_backward(self, count):
        with self.keyboard.holding("Shift"):
            for _ in range(count):
                self.keyboard.press("Left")
        let_keys_arrive()


def characters(text):
    """What a caret passes in one step: marks and joined emoji belong to what stands before them."""
    found = []
    for character in text:
        joins = found and (found[-1].endswith("\u200d") or character in "\u200d\ufe0f\u0301")
        if joins:
            found[-1] += character
        else:
            found.append(character)
    return found
