"""What users do, each with what must come of it. All that is random comes from `dice`, so that a seed gives one run."""

import re
import signal
import time

import screen
from waiting import Fault, wait_for

WORDS = ["hello", "make it short", "why", "say thanks", "question", "a list of plans", "rewrite", "please answer"]
PIECES = ["Sure. ", "世界，", "👨‍👩‍👧", "é", "🇩🇪", "two  spaces ", "ß\\n\" ", "привет ", "100 % "]
MULTILINE = ["\n", "tab\there "]
UNANSWERED = "Failed to get .*, error: kAXErrorCannotComplete"  # by an application that hangs or is gone
FAULTS = [{"status": 500, "body": "{}"}, {"status": 404, "body": "no such model"}, {"status": 200, "body": "not json"},
          {"fault": "reset"}, {"fault": "truncate", "content": "half"}, {"fault": "notHttp"}]


def answer_for(desk, dice, field):
    pieces = PIECES if field.is_terminal else PIECES + MULTILINE
    return "".join(dice.choice(pieces) for _ in range(dice.randint(1, 6))) + f"#{next(desk.counter)}."


def request_places(desk, dice):
    return dice.choice(WORDS)


def text_request(desk, dice, field):
    answer, places = answer_for(desk, dice, field), request_places(desk, dice)
    desk.service.answer_with({"content": answer, "delayMs": dice.choice([0, 0, 50, 400])})
    field.clear()
    mark = desk.begin()
    field.type(places)
    desk.commit(mark)
    desk.wait_for_answer(answer)
    field.expect(answer)


def selection_request(desk, dice, field):
    if field.is_terminal:
        return text_request(desk, dice, field)
    answer, places = answer_for(desk, dice, field), request_places(desk, dice)
    desk.service.answer_with({"content": answer})
    field.clear()
    field.type(places)
    desk.keyboard.press("Return")
    field.type(places)
    desk.keyboard.press("Shift+Home")
    time.sleep(0.2)
    desk.commit(desk.begin())
    desk.wait_for_answer(answer)
    field.expect(f"{desk.typed(places)}\n{answer}")


def failing_request(desk, dice, field):
    kept = f"kept {next(desk.counter)}"
    places = request_places(desk, dice)
    desk.service.answer_with(dice.choice(FAULTS))
    desk.log.explain(r"\[Pollinations\]", "rocessing error: ", "Error processing: ")
    field.clear()
    desk.set_clipboard(kept)
    mark = desk.begin()
    field.type(places)
    desk.commit(mark)
    desk.wait_for_failure(mark)
    field.expect(desk.typed(places))
    expect_clipboard(desk, kept)


def escape_while_listening(desk, dice, field):
    kept = f"kept {next(desk.counter)}"
    places = request_places(desk, dice)[:dice.randint(3, 9)].strip()
    field.clear()
    desk.set_clipboard(kept)
    desk.begin()
    field.type(places)
    desk.keyboard.press("Escape")
    time.sleep(0.3)
    field.expect(desk.typed(places))
    expect_clipboard(desk, kept)


def escape_while_processing(desk, dice, field):
    kept = f"kept {next(desk.counter)}"
    places = request_places(desk, dice)
    desk.service.answer_with({"content": "TOO LATE", "delayMs": dice.choice([900, 1500])})
    field.clear()
    desk.set_clipboard(kept)
    mark = desk.begin()
    field.type(places)
    desk.commit(mark)
    time.sleep(dice.choice([0.0, 0.1, 0.4]))
    desk.keyboard.press("Escape")
    time.sleep(1.8)  # past the moment at which the answer would have come
    desk.rest()
    field.expect(desk.typed(places))
    expect_clipboard(desk, kept)


def picture_request(desk, dice, field):
    places = "draw a picture of the sun"
    desk.service.control("reset", {})  # gives pictures for addresses of images
    if desk.typed(places) != places:
        return text_request(desk, dice, field)
    field.clear()
    mark = desk.begin()
    field.type(places)
    desk.commit(mark)
    desk.wait_for_line(r"\[Pollinations\] Image generated", mark)
    wait_for("the picture on the clipboard", lambda: "image/png" in desk.clipboard("TARGETS"), 10)
    time.sleep(0.5)  # its paste, which no field here takes
    desk.rest()
    field.expect("")


def prompt_box(desk, dice, field):
    """Asks through the box; the answer comes to where the caret stands."""
    places, send = request_places(desk, dice), dice.random() < 0.7
    answer = answer_for(desk, dice, field)
    desk.service.answer_with({"content": answer})
    field.clear()
    desk.press_when_free("Shift+Alt+Super+p")
    wait_for("the focus in the prompt box", lambda: screen.run("xdotool", "getwindowfocus").stdout.strip() != field.window
             and screen.run("xdotool", "getactivewindow").stdout.strip() != field.window, 10)
    time.sleep(0.3)
    desk.keyboard.type_places(places)
    desk.keyboard.press("Return" if send else "Escape")
    wait_for("the focus back in the field",
             lambda: screen.run("xdotool", "getactivewindow").stdout.strip() == field.window, 10)
    if send:
        desk.wait_for_answer(answer)
    field.expect(answer if send else "")


def master_switch(desk, dice, field):
    """Off, a hotkey begins nothing; on, it does again."""
    field.clear()
    desk.flip_switch()
    time.sleep(0.3)
    mark = desk.mark()
    desk.keyboard.press(desk.hotkey)
    time.sleep(0.5)
    if "Starting text listening" in desk.tavrelon.written()[mark:]:
        raise Fault("a hotkey worked although they were switched off")
    desk.flip_switch()
    time.sleep(0.3)
    field.clear()
    text_request(desk, dice, field)


def hung_application(desk, dice, field):
    """An application that stands still costs a bounded wait, and its field nothing."""
    if field.is_terminal:
        return text_request(desk, dice, field)
    places = request_places(desk, dice)
    desk.log.explain(UNANSWERED)
    field.clear()
    field.type(places)
    desk.wait_until_free()
    field.signal(signal.SIGSTOP)
    try:
        desk.keyboard.press(desk.hotkey)
        time.sleep(dice.choice([0.3, 1.0]))
        desk.keyboard.press("Escape")
        time.sleep(0.5)
    finally:
        field.signal(signal.SIGCONT)
    time.sleep(0.5)
    desk.keyboard.press("Escape")  # the first one may have found the program waiting for that application
    time.sleep(1.0)  # it works off what came meanwhile, and is known to be well again
    desk.rest()
    field.expect(desk.typed(places))


def killed_application(desk, dice, field):
    """Its answer must land nowhere else."""
    others = [(other, other.text) for other in desk.fields if other is not field and not other.is_terminal]
    desk.service.answer_with({"content": "NOBODY ASKED", "delayMs": 1500})
    desk.log.explain(UNANSWERED)
    field.clear()
    mark = desk.begin()
    field.type(request_places(desk, dice))
    desk.commit(mark)
    field.kill_and_open_again()
    desk.keyboard.press("Escape")
    time.sleep(2.0)
    desk.rest()
    for other, text in others:
        other.focus()
        other.expect(text)


def change_layout(desk, dice, field):
    desk.set_layout(*dice.choice([("us", 0), ("de", 0), ("us,ru", 0), ("us,ru", 1)]))
    text_request(desk, dice, field)


def change_surroundings(desk, dice, field):
    what = dice.choice(["window manager", "tray", "clipboard manager"])
    if what == "window manager":
        desk.restart_window_manager()
    elif what == "tray":
        desk.restart_tray()
    else:
        desk.restart("copyq", ["copyq", "--start-server"])
        time.sleep(1.0)
    field.focus()
    text_request(desk, dice, field)


def locked_screen(desk, dice, field):
    """A lock comes while the user types or the model thinks: nothing is heard under it, and no answer gets past it."""
    places, answer = request_places(desk, dice), answer_for(desk, dice, field)
    desk.service.answer_with({"content": answer, "delayMs": 1500})
    field.clear()
    mark = desk.begin()
    field.type(places)
    is_thinking = dice.random() < 0.5
    if is_thinking:
        desk.log.explain("Answer is on the clipboard", "Failed to get focused element")
        desk.commit(mark)
    with desk.keyboard.locked():
        under_lock = desk.mark()
        desk.keyboard.type_places("secret")
        if is_thinking:
            desk.wait_for_answer(answer)
        else:
            desk.keyboard.press(desk.hotkey)
            time.sleep(0.5)
        heard = re.search(r"Starting text listening|Committing text input", desk.tavrelon.written()[under_lock:])
    if heard:
        raise Fault(f"under the lock the hotkey did its work: {heard.group()}")
    desk.rest()
    if is_thinking:
        wait_for("the answer on the clipboard", lambda: desk.clipboard() == answer, 10)
    field.expect(desk.typed(places))


def expect_clipboard(desk, text):
    held = desk.clipboard()
    if held != text:
        raise Fault(f"the clipboard holds {held!r} instead of {text!r}")


WEIGHTS = {
    text_request: 6, selection_request: 4, failing_request: 3, escape_while_listening: 2, escape_while_processing: 2,
    picture_request: 2, prompt_box: 3, master_switch: 1, hung_application: 1, killed_application: 1,
    change_layout: 2, change_surroundings: 2, locked_screen: 1,
}
