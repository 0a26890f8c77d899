"""A sound server of one's own, a microphone that hears its speakers, and a voice."""

import os
import signal
import subprocess
import tempfile
from pathlib import Path

from programs import Program
from waiting import Fault, wait_for


def run(*command, environment=None):
    done = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=30,
                          env={**os.environ, **(environment or {})})
    if done.returncode != 0:
        raise Fault(f"{command[0]} failed: {done.stderr.strip()}")
    return done.stdout


class SoundServer(Program):
    """PulseAudio on a socket of its own. `environment` leads a client to it."""

    def __init__(self, log):
        self.folder = tempfile.TemporaryDirectory(prefix="tavrelon-sound.")
        folder = Path(self.folder.name)
        self.socket = folder / "native"
        self.environment = {"PULSE_SERVER": f"unix:{self.socket}"}
        self.spoken = {}
        self.script = folder / "script"
        self.script.write_text(f"load-module module-native-protocol-unix auth-anonymous=1 socket={self.socket}\n"
                               "load-module module-null-sink sink_name=speakers\n"
                               "load-module module-remap-source source_name=microphone master=speakers.monitor\n"
                               "set-default-source microphone\n")
        self.own_log = log
        self.start()

    def start(self):
        folder = str(self.socket.parent)
        own = {name: folder for name in ("HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "PULSE_RUNTIME_PATH")}
        super().__init__(["pulseaudio", "-n", "-F", str(self.script), "--daemonize=no", "--exit-idle-time=-1",
                          "--use-pid-file=no"], self.own_log, own)
        wait_for("the socket of the sound server", self.socket.exists, 20)
        # Speakers that are no device play in blocks of seconds unless somebody is in a hurry.
        self.listener = Program(["parec", "--device=speakers.monitor", "--latency-msec=10"], os.devnull,
                                self.environment)
        wait_for("the listener at the speakers", lambda: self.recordings() == 0, 20)

    def kill(self):
        """As a crash does it; `start` brings it back."""
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()
        self.listener.stop()
        self.socket.unlink(missing_ok=True)

    def stop(self):
        self.process.send_signal(signal.SIGCONT)
        self.listener.stop()
        super().stop()
        self.folder.cleanup()

    def recordings(self):
        listed = run("pactl", "list", "short", "source-outputs", environment=self.environment)
        return listed.count("protocol-native") - 1  # but for the listener

    def unplug_microphone(self):
        run("pactl", "unload-module", "module-remap-source", environment=self.environment)

    def plug_microphone(self):
        run("pactl", "load-module", "module-remap-source", "source_name=microphone", "master=speakers.monitor",
            environment=self.environment)
        run("pactl", "set-default-source", "microphone", environment=self.environment)

    def say(self, sentence):
        """Speaks, and returns after the last word."""
        if sentence not in self.spoken:
            self.spoken[sentence] = str(self.socket.parent / f"speech-{len(self.spoken)}.wav")
            run("espeak-ng", "-v", "en-us", "-s", "140", "-w", self.spoken[sentence], sentence)
        run("paplay", "--device=speakers", self.spoken[sentence], environment=self.environment)


def install_recogniser(build, home, sentences):
    """As scripts/install-voice does it; this recogniser knows these sentences."""
    folder = Path(home) / "data/Tavrelon/speech"
    (folder / "zh-CN").mkdir(parents=True)
    (folder / "libvosk.so").symlink_to((Path(build) / "tools/stage/libsphinx_vosk.so").resolve())
    (folder / "zh-CN/grammar.jsgf").write_text(
        f"#JSGF V1.0;\ngrammar sentences;\npublic <sentence> = {' | '.join(sentences)};\n", encoding="utf-8")
