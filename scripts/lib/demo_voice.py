"""demo_voice.py BUILD OUTPUT: speaks to the program in two editors on the display at hand and compares the files."""

import shutil
import tempfile
from pathlib import Path

import screen
from programs import Editor, StandIn, Tavrelon
from sound import SoundServer, install_recogniser
from waiting import Fault, run, wait_for

DICTATED = "hello my dear friend"
ASKED = "tell me a long story"
ANSWER = "Once upon a time there was a key that answered. 🗝️"
SILENCE = 4  # seconds after which the program takes a sentence to be over


def hold(*keys):
    """Presses a hotkey that consists of modifiers alone."""
    for step in ["keydown", "keyup"]:
        for key in keys:
            screen.run("xdotool", step, key)


def speak(sound, keys, sentence, picture):
    hold(*keys)
    wait_for("the recording", lambda: sound.recordings() == 1, 20)
    sound.say(sentence)
    screen.picture(picture)
    wait_for("the end of the recording", lambda: sound.recordings() == 0, 30)


def play(name, kind, build, output, service, sound, settings, act, expected):
    print(f"\n{kind}: {name}")
    path = output / f"voice-{kind}.txt"
    path.write_text("")
    with tempfile.TemporaryDirectory(prefix="tavrelon-demo.", ignore_cleanup_errors=True) as home:
        install_recogniser(build, home, [DICTATED, ASKED])
        settings = {"voiceDictationSilenceTimeoutSeconds": SILENCE, "voiceInputSilenceTimeoutSeconds": SILENCE, **settings}
        with Tavrelon(build / "src/tavrelon", output / f"voice-{kind}-tavrelon.log", home, service.port, settings,
                      sound.environment) as tavrelon:
            tavrelon.wait_until_live()
            with Editor(kind, path, output / f"voice-{kind}.log", tavrelon.home) as editor:
                act(tavrelon, output / f"voice-{kind}-speaking.png")
                after = editor.saved_text(expected, 15)
                screen.picture(output / f"voice-{kind}-after.png")
    print(f"  field after   {after or '(empty)'}")
    print("  right" if after == expected else f"  WRONG, expected {expected}", flush=True)
    return after == expected


def main(build, output):
    build, output = Path(build), Path(output)
    output.mkdir(parents=True, exist_ok=True)

    def dictate(_, picture):
        print(f"  said          {DICTATED}")
        speak(sound, ["ctrl", "shift"], DICTATED, picture)
        print(f"  model asked   {len(service.user_messages())} times")

    def ask(tavrelon, picture):
        service.answer_with({"content": ANSWER})
        print(f"  said          {ASKED}\n  model answers {ANSWER}")
        speak(sound, ["ctrl", "alt"], ASKED, picture)
        wait_for("the answer in the history", lambda: tavrelon.newest_answer() == ANSWER, 20)
        heard = service.user_messages()[0]
        if not heard.startswith(ASKED):
            raise Fault(f"the service heard {heard!r}")

    with StandIn(build / "tests/support/tavrelon-stand-in-service", output / "voice-service.log") as service, \
            SoundServer(output / "voice-sound.log") as sound:
        right = [play("dictation, without a model", "mousepad", build, output, service, sound, {"enableAI": False},
                      dictate, DICTATED),
                 play("a spoken request", "featherpad", build, output, service, sound, {}, ask, ANSWER)]
    print(f"\n{sum(right)} of {len(right)} fields right; screenshots and logs are in {output}/")
    return 0 if all(right) else 1


if __name__ == "__main__":
    run(main, "demo")
