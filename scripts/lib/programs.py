"""The programs that a demonstration or measurement runs: the stand-in service, Tavrelon and editors."""

import base64
import json
import os
import re
import subprocess
import urllib.request
from pathlib import Path

import session
from waiting import Fault, wait_for


class Program:
    """A child process whose output goes to a file. It ends with the `with` block."""

    def __init__(self, command, log, environment=None):
        self.log = Path(log)
        self.name = Path(command[0]).name
        with open(self.log, "wb") as output:
            self.process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output,
                                            stderr=subprocess.STDOUT, env={**os.environ, **(environment or {})})

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()

    def stop(self):
        self.process.terminate()
        try:
            self.process.wait(5)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()

    def written(self):
        return self.log.read_text(encoding="utf-8", errors="replace")

    def wait_for_line(self, pattern, after=0, seconds=10.0):
        """The first line past the offset `after` that matches; ends early if the program does."""
        def look():
            found = re.search(pattern, self.written()[after:])
            if not found and self.process.poll() is not None:
                raise Fault(f"{self.name} ended with status {self.process.returncode}:\n{self.written()[-2000:]}")
            return found
        return wait_for(f"'{pattern}' in the log of {self.name}", look, seconds)


class StandIn(Program):
    """The stand-in model service and the requests that it has had."""

    def __init__(self, executable, log, port=0):
        super().__init__([str(executable), "--port", str(port)], log)
        try:
            self.port = int(self.wait_for_line(r"listening on (\d+)").group(1))
        except BaseException:
            self.stop()
            raise

    def control(self, path, document=None):
        data = None if document is None else json.dumps(document).encode()
        request = urllib.request.Request(f"http://127.0.0.1:{self.port}/control/{path}", data=data)
        with urllib.request.urlopen(request, timeout=10) as answer:
            return json.loads(answer.read() or b"null")

    def answer_with(self, answer):
        """Forgets what came and gives every request this answer."""
        self.control("reset", {})
        self.control("script", {"answers": [], "default": answer})

    def user_messages(self):
        messages = []
        for request in self.control("requests"):
            body = request["body"]
            for message in body.get("messages", []) if isinstance(body, dict) else []:
                if message.get("role") == "user":
                    messages.append(text_of(message["content"]))
        return messages

    def pictures(self):
        """Those that came with the requests, decoded from their data URLs."""
        found = re.findall(r"data:image/jpeg;base64,([A-Za-z0-9+/=]+)", json.dumps(self.control("requests")))
        return [base64.b64decode(picture) for picture in found]


def text_of(content):
    if isinstance(content, str):
        return content
    return "\n".join(part["text"] for part in content if part.get("type") == "text")


class Tavrelon(Program):
    """The product with settings of its own, so that a user's are neither read nor changed; without a service none yet."""

    def __init__(self, executable, log, home, service_port, extra_settings=None, extra_environment=None,
                 arguments=("--background",)):
        self.home = Path(home)
        self.history = self.home / "data" / "Tavrelon" / "history.json"
        folder = self.home / "config" / "Tavrelon"
        folder.mkdir(parents=True, mode=0o700, exist_ok=True)
        if service_port is not None:
            settings = {"enableCustomPollinations": True, "pollinationsBaseURL": f"http://127.0.0.1:{service_port}",
                        "pollinationsVisionModel": "demo", **(extra_settings or {})}
            (folder / "tavrelon.settings").write_text(json.dumps(settings))
        self.executable = str(executable)
        self.environment = {"XDG_CONFIG_HOME": str(self.home / "config"), "XDG_DATA_HOME": str(self.home / "data"),
                            **(extra_environment or {})}
        # Unless told without its dashboard, which would lie over the editors and keep the processor busy.
        super().__init__([self.executable, *arguments], log, self.environment)

    def wait_until_live(self):
        self.wait_for_line(r"\[Hotkey\] Listening", seconds=20)

    def trigger(self, name):
        """Runs the program once more to tell this one what to do; gives its exit status."""
        return subprocess.run([self.executable, "--trigger", name], env={**os.environ, **self.environment}, timeout=20,
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode

    def stored(self):
        """The history once all that stands in it is written: an answer is stored before it is written."""
        try:
            entries = json.loads(self.history.read_text(encoding="utf-8"))
        except (OSError, ValueError):
            return []
        lines = self.written()
        begun, ended = lines.count("[StateMachine] Writing\n"), lines.count("[StateMachine] Writing ended\n")
        return entries[max(begun - ended, 0):]

    def newest_answer(self):
        entries = self.stored()
        return entries[0]["outputText"] if entries else None


EDITORS = {
    "mousepad": ["mousepad", "--disable-server"],
    "featherpad": ["featherpad", "--standalone"],
}
OTHER_EDITORS = {"gnome-text-editor": ["gnome-text-editor", "--standalone"]}
SHOWN = ("mousepad", "gnome-text-editor") if session.is_wayland() else tuple(EDITORS)  # in a demonstration


class Editor(Program):
    """An editor with one file open and the focus in it."""

    def __init__(self, kind, path, log, home):
        config = Path(home) / "editors"
        # Without this featherpad adds a line end of its own to each file that it saves.
        (config / "featherpad").mkdir(parents=True, exist_ok=True)
        (config / "featherpad" / "fp.conf").write_text("[text]\nappendEmptyLine=false\n")
        self.path = Path(path)
        self.adds_line_end = kind in OTHER_EDITORS
        super().__init__([*(EDITORS | OTHER_EDITORS)[kind], str(path)], log,
                         {"XDG_CONFIG_HOME": str(config), "GSK_RENDERER": "cairo"})
        try:
            self.window = session.wait_for_window(self.path.name)
        except BaseException:
            self.stop()
            raise

    def saved_text(self, expected, seconds=5.0):
        """Saves and reads the file until it holds what is expected; else what it holds in the end."""
        def saved():
            session.press("ctrl+s")
            return self.text(expected) == expected
        try:
            wait_for("the saved file", saved, seconds, pause=0.3)
        except Fault:
            pass
        return self.text(expected)

    def text(self, expected):
        """Of the file, without what an editor adds to each."""
        text = self.path.read_text(encoding="utf-8")
        return expected if self.adds_line_end and text == expected + "\n" else text
