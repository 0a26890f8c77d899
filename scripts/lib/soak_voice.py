"""What users say and show instead of typing: dictation, spoken requests, videos, replies to what is there."""

import signal
import time

from soak_actions import answer_for, expect_clipboard, request_places, text_request
from soak_desk import ASKED, DICTATED
from waiting import wait_for

DICTATION, SPOKEN_REQUEST, VIDEO, AUTO_REPLY = "Control+Shift", "Control+Alt", "Shift+Alt+Super+g", "Shift+Alt+Super+a"
UNTIL_UNDERSTOOD = 0.7  # seconds that a recogniser may be behind the last word
UNTIL_PASTED = 0.5      # seconds; the clipboard has the words before the paste shortcut is pressed


def start_recording(desk, chord):
    mark = desk.press_when_free(chord)
    desk.wait_for_hotkey("Voice .*pressed.*", mark)
    wait_for("the recording", lambda: desk.sound.recordings() == 1, 15)
    return mark


def finish_recording(desk, dice, chord):
    """By the second press, or by silence."""
    if dice.random() < 0.5:
        time.sleep(UNTIL_UNDERSTOOD)
        desk.keyboard.press(chord)
    wait_for("the end of the recording", lambda: desk.sound.recordings() == 0, 20)


def wait_for_dictation(desk, text):
    wait_for("the words on the clipboard", lambda: desk.clipboard() == text, 10, pause=0.1)
    time.sleep(UNTIL_PASTED)
    desk.rest()


def dictation(desk, dice, field):
    desk.service.answer_with({"status": 500, "body": "{}"})  # which nobody asks
    field.clear()
    desk.set_clipboard(f"kept {next(desk.counter)}")
    start_recording(desk, DICTATION)
    desk.sound.say(DICTATED)
    finish_recording(desk, dice, DICTATION)
    wait_for_dictation(desk, DICTATED)
    field.expect(DICTATED)


def spoken_request(desk, dice, field):
    answer = answer_for(desk, dice, field)
    desk.service.answer_with({"content": answer})
    field.clear()
    start_recording(desk, SPOKEN_REQUEST)
    desk.sound.say(ASKED)
    finish_recording(desk, dice, SPOKEN_REQUEST)
    desk.wait_for_answer(answer)
    desk.expect_heard(ASKED)
    field.expect(answer)


def broken_off_recording(desk, dice, field):
    """By Escape, or by saying nothing at all."""
    kept, chord = f"kept {next(desk.counter)}", dice.choice([DICTATION, SPOKEN_REQUEST])
    desk.service.answer_with({"status": 500, "body": "{}"})
    field.clear()
    desk.set_clipboard(kept)
    mark = start_recording(desk, chord)
    if dice.random() < 0.7:
        desk.sound.say(dice.choice([DICTATED, ASKED]))
        desk.keyboard.press("Escape")
    else:
        desk.wait_for_line("No (voice|dictation) transcript to", mark)
    wait_for("the end of the recording", lambda: desk.sound.recordings() == 0, 20)
    time.sleep(0.5)
    desk.rest()
    field.expect("")
    expect_clipboard(desk, kept)


def sound_outage(desk, dice, field):
    """The sound server crashes or hangs in the midst of a dictation: what was said until then is used."""
    was_said, hangs = dice.random() < 0.6, dice.random() < 0.4
    desk.log.explain(r"\[Audio\] No microphone: ", "No microphone input device is available")
    field.clear()
    desk.set_clipboard(f"kept {next(desk.counter)}")
    mark = start_recording(desk, DICTATION)
    if was_said:
        desk.sound.say(DICTATED)
        time.sleep(UNTIL_UNDERSTOOD)
    if hangs:
        desk.sound.process.send_signal(signal.SIGSTOP)
    else:
        desk.sound.kill()
    try:
        if was_said:
            wait_for_dictation(desk, DICTATED)
        else:
            desk.wait_for_line("No dictation transcript to insert", mark)
            desk.rest()
        if not hangs:
            mark = desk.press_when_free(DICTATION)
            desk.wait_for_line("Failed to start voice dictation: No microphone", mark)
            desk.rest()
    finally:
        desk.restore_sound()
    field.expect(DICTATED if was_said else "")
    dictation(desk, dice, field)


def video_request(desk, dice, field):
    """What is typed while the window is filmed is the question, where the program can see it, or else stays."""
    answer, places = answer_for(desk, dice, field), dice.choice(["", request_places(desk, dice)])
    desk.service.answer_with({"content": answer})
    field.clear()
    desk.press_when_free(VIDEO)
    time.sleep(0.8)
    field.type(places)
    time.sleep(dice.choice([0.3, 1.0]))
    desk.keyboard.press(VIDEO)
    desk.wait_for_answer(answer)
    typed = desk.typed(places)
    desk.expect_heard("Describe the video." if field.is_terminal or not typed else typed, with_picture=True)
    field.expect(typed + answer if field.is_terminal else answer)


def auto_reply(desk, dice, field):
    """Comes behind what is there, or in place of what is selected."""
    answer, places = answer_for(desk, dice, field), request_places(desk, dice)
    desk.service.answer_with({"content": answer, "delayMs": dice.choice([0, 300])})
    field.clear()
    field.type(places)
    selects = not field.is_terminal and dice.random() < 0.5
    if selects:
        desk.keyboard.press("Shift+Home")
        time.sleep(0.2)
    desk.press_when_free(AUTO_REPLY)
    desk.wait_for_answer(answer)
    field.expect(answer if selects else desk.typed(places) + answer)


def other_hotkeys(desk, dice, field):
    """Voice, dictation, video and the auto-reply, each begun and broken off."""
    if field.is_terminal:  # to which an Escape with nothing to stop is a character
        return text_request(desk, dice, field)
    places = request_places(desk, dice)
    desk.service.answer_with({"status": 500, "body": "{}"})
    desk.log.explain("Error processing auto reply: ", r"\[Pollinations\]")
    field.clear()
    field.type(places)
    for chord in dice.sample([SPOKEN_REQUEST, DICTATION, VIDEO, AUTO_REPLY], 2):
        desk.press_when_free(chord)
        time.sleep(dice.choice([0.2, 0.6]))
        desk.keyboard.press("Escape")
        time.sleep(0.4)
    time.sleep(2.0)
    desk.rest()
    field.expect(desk.typed(places))


WEIGHTS = {dictation: 3, spoken_request: 3, broken_off_recording: 2, sound_outage: 2, video_request: 3, auto_reply: 3,
           other_hotkeys: 2}
