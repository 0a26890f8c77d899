"""A sound server of one's own, a microphone that hears its speakers, and a voice."""

import os
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
        socket = folder / "native"
        script = folder / "script"
        script.write_text(f"load-module module-native-protocol-unix auth-anonymous=1 socket={socket}\n"
                          "load-module module-null-sink sink_name=speakers\n"
                          "load-module module-remap-source source_name=microphone master=speakers.monitor\n"
                          "set-default-source microphone\n")
        own = {name: str(folder) for name in ("HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "PULSE_RUNTIME_PATH")}
        super().__init__(["pulseaudio", "-n", "-F", str(script), "--daemonize=no", "--exit-idle-time=-1",
                          "--use-pid-file=no"], log, own)
        self.environment = {"PULSE_SERVER": f"unix:{socket}"}
        wait_for("the socket of the sound server", socket.exists, 20)
        # Speakers that are no device play in blocks of seconds unless somebody is in a hurry.
        self.listener = Program(["parec", "--device=speakers.monitor", "--latency-msec=10"], os.devnull,
                                self.environment)

    def stop(self):
        self.listener.stop()
        super().stop()
        self.folder.cleanup()

    def recordings(self):
        listed = run("pactl", "list", "short", "source-outputs", environment=self.environment)
        return listed.count("protocol-native") - 1  # but for the listener

    def say(self, sentence):
        """Speaks, and returns after the last word."""
        file = str(Path(self.folder.name) / "speech.wav")
        run("espeak-ng", "-v", "en-us", "-s", "140", "-w", file, sentence)
        run("paplay", "--device=speakers", file, environment=self.environment)
