"""The program itself, spoken to."""

from pathlib import Path

import pytest
from editors import let_keys_arrive
from conftest import ends_well, history, wait_for_history
from sound import SoundServer, install_recogniser
from waiting import wait_for

GREETING, WISH = "hello my dear friend", "tell me a long story"  # what the recogniser understands
DICTATION, SPOKEN_REQUEST = "Control+Shift", "Control+Alt"
# A loaded machine takes its time to understand.
SLOW_TO_END = {"voiceDictationSilenceTimeoutSeconds": 6.0, "voiceInputSilenceTimeoutSeconds": 6.0}


@pytest.fixture
def sound(desk):
    return desk.started(SoundServer(desk.folder / "sound.log"))


def start(desk, sound, settings=None, prepare=lambda build, home: install_recogniser(build, home, [GREETING, WISH])):
    return desk.start({**SLOW_TO_END, **(settings or {})}, sound.environment, lambda home: prepare(desk.build, home))


def press(desk, chord):
    first, second = chord.split("+")
    let_keys_arrive()
    with desk.keyboard.holding(first), desk.keyboard.holding(second):
        let_keys_arrive()


def start_speaking(desk, sound, chord):
    press(desk, chord)
    wait_for("the recording", lambda: sound.recordings() == 1, 20)


def wait_for_end(sound):
    wait_for("the end of the recording", lambda: sound.recordings() == 0, 20)


def sound_threads(tavrelon):
    tasks = Path(f"/proc/{tavrelon.process.pid}/task").iterdir()
    return sum((task / "comm").read_text().startswith(("audio input", "speech")) for task in tasks)


def test_what_is_dictated_stands_in_the_field_without_a_model_and_nothing_runs_afterwards(desk, sound):
    editor, tavrelon = desk.open("mousepad"), start(desk, sound, {"enableAI": False})
    start_speaking(desk, sound, DICTATION)
    assert sound_threads(tavrelon) == 2
    sound.say(GREETING)
    wait_for_end(sound)  # by silence
    assert editor.saved(GREETING) == GREETING
    assert desk.asked() == [] and history(tavrelon) == []
    wait_for("an end of the threads", lambda: sound_threads(tavrelon) == 0, 20)
    assert ends_well(tavrelon)


def test_a_spoken_request_is_answered_in_place(desk, sound):
    editor, tavrelon = desk.open("featherpad"), start(desk, sound)
    desk.answers("ONCE UPON A TIME")
    start_speaking(desk, sound, SPOKEN_REQUEST)
    sound.say(WISH)
    wait_for_history(tavrelon, 1)
    assert WISH in str(desk.asked()[0]["body"])
    assert editor.saved("ONCE UPON A TIME") == "ONCE UPON A TIME"
    assert sound.recordings() == 0
    assert ends_well(tavrelon)


def test_escape_drops_what_was_said_and_a_missing_microphone_is_no_harm(desk, sound):
    editor, tavrelon = desk.open("mousepad", "as it was"), start(desk, sound)
    start_speaking(desk, sound, DICTATION)
    sound.say(GREETING)
    desk.keyboard.press("Escape")
    wait_for_end(sound)
    sound.unplug_microphone()
    mark = len(tavrelon.written())
    press(desk, DICTATION)
    tavrelon.wait_for_line("Failed to start voice dictation: No microphone input device is available.", mark, 20)
    sound.plug_microphone()
    start_speaking(desk, sound, DICTATION)
    assert editor.saved("as it was") == "as it was"
    assert ends_well(tavrelon)


def test_without_a_recogniser_the_user_is_told(desk, sound):
    desk.open("mousepad")
    tavrelon = start(desk, sound, prepare=lambda build, home: None)
    mark = len(tavrelon.written())
    press(desk, SPOKEN_REQUEST)
    tavrelon.wait_for_line("Failed to start voice recording: Speech recognition is not available on this device", mark, 20)
    assert "[Speech] No recogniser: looked for the library in " in tavrelon.written()
