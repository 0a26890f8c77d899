"""Pictures: one that is drawn and lands in a field, and one of the window that goes along with a request."""

import base64
import json
import time
import urllib.request

import screen
import session
from demo_cases import Case
from programs import Editor, Program
from waiting import Fault, wait_for

DESCRIPTION = {"subject": {"animal": "a ginger cat"}, "lighting": {"type": "evening sun"}}
ON_THE_CLIPBOARD = "图片已复制到剪贴板"
DRAWING = Case(name="a drawing", before="", after="\ufffc", typed="draw a cat", request="draw a cat", answer={})
SEEN = Case(name="a picture of the window", before="The sea was calm.\n", after="The sea was calm.\nI see an editor.",
            keys=["ctrl+End"], typed="what is on my screen", request="what is on my screen",
            answer={"content": "I see an editor."})


class PictureField(Program):
    """A window with the focus that takes a pasted picture and keeps its bytes."""

    def __init__(self, executable, path):
        self.path = path
        self.text_path = path.with_name(path.name + ".txt")
        super().__init__([str(executable), str(path)], path.with_suffix(".log"))
        try:
            session.wait_for_window("Picture field")
        except BaseException:
            self.stop()
            raise


def pixels(path):
    """A hash of what the file shows, whatever its format."""
    return screen.answer("identify", "-format", "%wx%h %#", str(path))


def draw(stage, build):
    """What was sent by the service and what arrived in the field, as texts that must be equal; then the field's text."""
    stage.service.answer_with({})  # a picture, where one is asked for
    stage.service.control("script", [{"path": "/chat/completions", "content": json.dumps(DESCRIPTION)}])
    pasted = stage.output / "drawing.png"
    with PictureField(build / "tools/stage/tavrelon-picture-field", pasted) as field:
        stage.ask(DRAWING, "drawing")
        wait_for("a picture in the field", lambda: pasted.exists() and pasted.stat().st_size > 0, seconds=20)
        wait_for("the picture in the history", lambda: stage.tavrelon.newest_answer() == ON_THE_CLIPBOARD, seconds=20)
        time.sleep(0.3)  # until the field is drawn
        session.picture(stage.output / "drawing-after.png")
        text = field.text_path.read_text(encoding="utf-8")
    asked = next(request for request in stage.service.control("requests") if request["path"].startswith("/image/"))
    sent = stage.output / "drawing-as-sent.png"
    with urllib.request.urlopen(f"http://127.0.0.1:{stage.service.port}{asked['target']}", timeout=10) as answer:
        sent.write_bytes(answer.read())
    stage.rest()
    return asked["path"], pixels(sent), pixels(pasted), text


def picture_in(request):
    for message in request["body"]["messages"]:
        for part in message["content"] if isinstance(message["content"], list) else []:
            if part.get("type") == "image_url":
                return base64.b64decode(part["image_url"]["url"].split(",", 1)[1], validate=True)
    return None


def see(stage):
    """The picture that the service received, as a file and in words, and the field afterwards."""
    path = stage.output / "window.txt"
    path.write_text(SEEN.before, encoding="utf-8")
    stage.service.answer_with(SEEN.answer)
    with Editor("mousepad", path, stage.output / "window.log", stage.tavrelon.home) as editor:
        session.press(*SEEN.keys)
        mark = stage.ask(SEEN, "window")
        stage.see_outcome(SEEN, mark)
        after = editor.saved_text(SEEN.after)
        size = " by ".join(map(str, screen.size_of(editor.window))) if editor.window else "not told"
    received = picture_in(stage.service.control("requests")[0])
    if received is None:
        raise Fault("the request carried no picture")
    jpeg = stage.output / "window-as-received.jpg"
    jpeg.write_bytes(received)
    form, shown_width, colours = screen.answer("identify", "-format", "%m %w %k", str(jpeg)).split()
    right = form == "JPEG" and int(colours) > 50 and after == SEEN.after
    return jpeg, f"{form}, {shown_width} wide (the window is {size}), {colours} colours", after, right


def play(stage, build, show):
    """Plays both and gives how many were wrong."""
    wrong = 0
    print(f"\npicture field: {DRAWING.name}")
    show("request", DRAWING.typed)
    try:
        asked, sent, pasted, text = draw(stage, build)
        show("asked for", asked)
        show("service sent", sent)
        show("field got", pasted)
        right = sent == pasted and text == DRAWING.after
        show("field after", repr(text))
    except Fault as fault:
        show("fault", str(fault))
        right = False
    print("  right" if right else "  WRONG", flush=True)
    wrong += not right
    print(f"\nmousepad: {SEEN.name}")
    show("request", SEEN.typed)
    try:
        jpeg, words, after, right = see(stage)
        show("service got", words)
        show("kept in", str(jpeg))
        show("field after", after)
    except Fault as fault:
        show("fault", str(fault))
        right = False
    print("  right" if right else "  WRONG", flush=True)
    return wrong + (not right)
