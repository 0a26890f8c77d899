"""What KWin tells: the window in front, by a script of ours within it, and who holds which shortcut."""

import json
import os
import re
import struct
import subprocess
from pathlib import Path

from waiting import Fault, wait_for

SAYS = re.compile(r'^js: front-title (".*")$', re.MULTILINE)
SCRIPT = """
function tell(w) { print("front-title " + JSON.stringify(w ? w.caption : "")); }
workspace.clientActivated.connect(w => {
    tell(w);
    if (w) w.captionChanged.connect(() => { if (workspace.activeClient === w) tell(w); });
});
tell(workspace.activeClient);
"""


def is_session():
    return os.environ.get("XDG_CURRENT_DESKTOP") == "KDE"


def call(service, path, method, *arguments):
    done = subprocess.run(["dbus-send", "--session", "--print-reply=literal", f"--dest={service}", path, method, *arguments],
                          stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=20)
    if done.returncode != 0:
        raise Fault(f"{method}: {done.stderr.strip()}")
    return done.stdout


def front_title():
    runtime = Path(os.environ["XDG_RUNTIME_DIR"])
    said = SAYS.findall((runtime / "kwin.log").read_text(encoding="utf-8", errors="replace"))
    if said:
        return json.loads(said[-1])
    file = runtime / "front-title.js"
    if not file.exists():
        file.write_text(SCRIPT)
        number = call("org.kde.KWin", "/Scripting", "org.kde.kwin.Scripting.loadScript", f"string:{file}").split()[-1]
        call("org.kde.KWin", f"/{number}", "org.kde.kwin.Script.run")
    return ""


def shortcuts():
    """The actions that the program has registered; without any KWin does not know it."""
    try:
        return call("org.kde.kglobalaccel", "/component/tavrelon", "org.kde.kglobalaccel.Component.shortcutNames")
    except Fault:
        return ""


def take_shortcut(key):
    """Another program takes a key, a number of Qt's."""
    action = "array:string:other,action,Other,Action"
    for method, *more in (["doRegister"], ["setShortcut", f"array:int32:{key}", "uint32:6"]):
        call("org.kde.kglobalaccel", "/kglobalaccel", f"org.kde.KGlobalAccel.{method}", action, *more)


def cover_front_window(by):
    """The window whose title has `by` in it lies over all of the one in front from now on, which keeps the keyboard. Tells
    that one's place as ImageMagick does."""
    file = Path(os.environ["XDG_RUNTIME_DIR"]) / "cover.js"
    file.write_text(f"""
        const front = workspace.activeClient, cover = workspace.clientList().find(w => w.caption.includes("{by}"));
        const f = front.frameGeometry;
        cover.keepAbove = true;
        cover.frameGeometry = f;
        print("covered " + f.width + "x" + f.height + "+" + f.x + "+" + f.y);""")
    number = call("org.kde.KWin", "/Scripting", "org.kde.kwin.Scripting.loadScript", f"string:{file}").split()[-1]
    call("org.kde.KWin", f"/{number}", "org.kde.kwin.Script.run")
    log = Path(os.environ["XDG_RUNTIME_DIR"]) / "kwin.log"
    return wait_for("the cover", lambda: re.search("^js: covered (.*)$", log.read_text(errors="replace"), re.MULTILINE))[1]


def screen_picture(path, program):
    """What KWin shows to the program that may take pictures."""
    taken = subprocess.run([program, "--screen"], stdin=subprocess.DEVNULL, capture_output=True, timeout=20, check=True).stdout
    width, height, stride, _ = struct.unpack(">4I", taken[:16])
    assert stride == 4 * width
    subprocess.run(["convert", "-size", f"{width}x{height}", "-depth", "8", "bgra:-", "-alpha", "off", str(path)],
                   input=taken[16:], timeout=20, check=True)
    return path


def share_of(colour, picture):
    """How much of a picture has it, from 0 to 1; a part of one is named as ImageMagick does."""
    done = subprocess.run(["convert", str(picture), "-fuzz", "10%", "-fill", "black", "+opaque", colour, "-fill", "white",
                           "-opaque", colour, "-format", "%[fx:mean]", "info:"],
                          stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=20, check=True)
    return float(done.stdout)
