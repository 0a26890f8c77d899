"""The floors of src/ and the rules that keep them apart. docs/architecture.md tells the same story in words."""

import re
from collections import defaultdict
from dataclasses import dataclass, field
from pathlib import Path

FLOORS = [
    ["text", "async", "keys"],
    ["platform"],
    ["capture"],
    ["scenes", "media"],
    ["persistence", "generation", "output"],
    ["learning"],
    ["input"],
    ["hotkeys", "ui/theme", "ui/hud", "ui/floating"],
    ["app"],
    ["ui/dashboard"],
    ["ui/settings", "ui/history"],
]
ADAPTERS = ["desktop/applications", "desktop/atspi", "desktop/audio", "desktop/documents", "desktop/gnome",
            "desktop/kwin", "desktop/linux", "desktop/qt", "desktop/session", "desktop/wayland", "desktop/x11", "desktop/xkb"]
PICKER = "desktop/session"  # which of the other adapters this session has; it may use them all

# Neighbours on one floor that may be used in this one direction, with the reason.
NEIGHBOURS = {
    ("keys", "text"): "hotkey records are written as JSON",
    ("desktop/atspi", "desktop/linux"): "a bus that may hang is tried before the library connects to it",
    ("desktop/documents", "desktop/linux"): "the document process reads files with the same care as the program",
    ("desktop/gnome", "desktop/applications"): "which chords a window takes is told by its application",
    ("desktop/gnome", "desktop/linux"): "the shell sees by the path of a process which program connects",
    ("desktop/gnome", "desktop/wayland"): "what a script within a compositor tells of windows is alike in all",
    ("desktop/gnome", "desktop/x11"): "the shell's X server knows the user's keyboard layouts",
    ("desktop/gnome", "desktop/xkb"): "hotkeys and posted keys are keys of an xkb keymap",
    ("desktop/kwin", "desktop/applications"): "a window's id tells its application, and which chords that takes",
    ("desktop/kwin", "desktop/linux"): "the process behind a window is found in /proc, and a bus that may hang is tried",
    ("desktop/kwin", "desktop/wayland"): "KWin takes posted keys over the connection that the clipboard uses",
    ("desktop/kwin", "desktop/xkb"): "hotkeys and posted keys are keys of an xkb keymap",
    ("desktop/wayland", "desktop/applications"): "a window's id tells its application, and which chords that takes",
    ("desktop/wayland", "desktop/linux"): "the process behind a window is found in /proc",
    ("desktop/wayland", "desktop/xkb"): "hotkeys and posted keys are keys of an xkb keymap",
    ("desktop/x11", "desktop/xkb"): "so are those of an X server",
    ("desktop/x11", "desktop/linux"): "the process behind a window is found in /proc",
    ("desktop/x11", "desktop/applications"): "a window's class tells its application, and which chords that takes",
}

ROOF = "program"
GENERATED = {"service_endpoints_config.h": "generation"}
SOURCE_SUFFIXES = {".cpp", ".h"}

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
PLATFORM_IFDEF = re.compile(
    r"^\s*#\s*(?:if|ifdef|ifndef|elif|elifdef)\b.*"
    r"\b(_WIN32|_WIN64|WIN32|__APPLE__|__MACH__|__linux__|__linux|__gnu_linux__|__unix__|__FreeBSD__|"
    r"TARGET_OS_\w+|Q_OS_\w+|Q_WS_\w+)\b")
DESKTOP_HEADER = re.compile(r"^(xcb/|X11/|wayland|xkbcommon/|QDBus|QtDBus|atspi|dbus/|pulse/|glib|gio/)")
LINKED_TARGET = re.compile(r"\btavrelon_(\w+)\b")
NOT_FOLDERS = {"library", "options", "test", "test_support"}


@dataclass
class Report:
    faults: list = field(default_factory=list)
    edges: dict = field(default_factory=lambda: defaultdict(set))

    def fault(self, path, line, text):
        self.faults.append(f"{path}:{line}: {text}")


def floor_of(folder):
    return next((number for number, folders in enumerate(FLOORS) if folder in folders), None)


def folder_of(path):
    """The floor or adapter folder that holds `path` (relative to src/), or None."""
    parts = Path(path).parts
    for length in range(len(parts) - 1, 0, -1):
        candidate = "/".join(parts[:length])
        if candidate == ROOF or candidate in ADAPTERS or floor_of(candidate) is not None:
            return candidate
    return None


def objection(user, used):
    """Why the folder `user` may not use the folder `used`; None if it may."""
    if user in (used, ROOF) or (user, used) in NEIGHBOURS or (user == PICKER and used in ADAPTERS):
        return None
    if used == ROOF:
        return f"only {ROOF}/ itself may use the roof"
    if used in ADAPTERS and user in ADAPTERS:
        return f"the adapter {user}/ may not use its neighbour {used}/"
    if used in ADAPTERS:
        return f"only program/ and tests may name the adapter {used}/"
    if user in ADAPTERS:
        if used == "platform" or floor_of(used) == 0:
            return None
        return f"the adapter {user}/ may use only platform/ and floor 0, not {used}/ on floor {floor_of(used)}"
    if floor_of(used) < floor_of(user):
        return None
    relation = "its neighbour" if floor_of(used) == floor_of(user) else "the higher"
    return f"{user}/ on floor {floor_of(user)} may not use {relation} {used}/ on floor {floor_of(used)}"


def files_under(folder):
    return sorted(path for path in folder.rglob("*") if path.is_file()) if folder.is_dir() else []


def check_source(root, path, report):
    shown = path.relative_to(root)
    inside = path.relative_to(root / "src")
    user = folder_of(inside)
    if user is None:
        report.fault(shown, 1, "this folder is on no floor: place it in scripts/lib/layers.py and docs/architecture.md")
        return
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if user not in ADAPTERS and user != ROOF and PLATFORM_IFDEF.match(line):
            report.fault(shown, number, "a condition on the platform outside desktop/: make it a port")
        match = INCLUDE.match(line)
        if match:
            check_include(root, user, match, (shown, number), report)


def check_include(root, user, match, where, report):
    quoted, target = match.group(1) == '"', match.group(2)
    if not quoted:
        if user != ROOF and user not in ADAPTERS and DESKTOP_HEADER.match(target):
            report.fault(*where, f"<{target}> belongs to an adapter under desktop/")
        return
    if target in GENERATED:
        if user != GENERATED[target]:
            report.fault(*where, f"\"{target}\" is for {GENERATED[target]}/ alone")
        return
    if target.endswith(".moc"):
        return
    if not (root / "src" / target).is_file():
        report.fault(*where, f"\"{target}\" is no file under src/ (write the path from src/; nothing there uses tests/)")
        return
    used = folder_of(target)
    if used is None:
        report.fault(*where, f"\"{target}\" is on no floor")
        return
    report.edges[user].add(used)
    if (reason := objection(user, used)):
        report.fault(*where, reason)


def check_links(root, path, report):
    """Link lists obey the same rules as includes."""
    user = folder_of(path.relative_to(root / "src"))
    if user is None:
        return
    folders = {name.replace("/", "_"): name for name in ADAPTERS + [f for floor in FLOORS for f in floor]}
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        for name in LINKED_TARGET.findall(line.split("#")[0]):
            if name in folders:
                reason = objection(user, folders[name])
            else:
                reason = None if name in NOT_FOLDERS else f"tavrelon_{name} is no folder of src/"
            if reason:
                report.fault(path.relative_to(root), number, reason)


def check_cmake_lists(root, tree, report):
    """Every .cpp is named in the CMakeLists.txt of its folder or of one above; lists are never made by a pattern."""
    for path in files_under(root / tree):
        shown = path.relative_to(root)
        if path.name == "CMakeLists.txt":
            for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
                if re.search(r"\b(GLOB|GLOB_RECURSE|aux_source_directory)\b", line.split("#")[0]):
                    report.fault(shown, number, "name the sources one by one")
        if path.suffix == ".cpp" and not is_listed(root, path):
            report.fault(shown, 1, "no CMakeLists.txt names this file, so nothing builds it")


def is_listed(root, path):
    folder = path.parent
    while folder != root:
        lists = folder / "CMakeLists.txt"
        if lists.is_file():
            text = re.sub(r"#.*", "", lists.read_text(encoding="utf-8"))
            name = re.escape(str(path.relative_to(folder)))
            if re.search(rf"(?<![\w./-]){name}(?![\w./-])", text):
                return True
        folder = folder.parent
    return False


def check(root):
    root = Path(root)
    report = Report()
    for path in files_under(root / "src"):
        if path.suffix in SOURCE_SUFFIXES:
            check_source(root, path, report)
        elif path.name == "CMakeLists.txt":
            check_links(root, path, report)
    for tree in ("src", "tests", "bench", "tools"):
        check_cmake_lists(root, tree, report)
    return report


def graph_lines(root, report):
    """The graph from the roof down, one line for each folder that stands."""
    def line(folder):
        used = sorted(report.edges[folder] - {folder}, key=lambda name: (floor_of(name) is None, -(floor_of(name) or 0), name))
        return f"    {folder:<16} -> {', '.join(used) or '(nothing)'}"

    source = Path(root) / "src"
    if (source / ROOF).is_dir():
        yield "roof"
        yield line(ROOF)
    for number in reversed(range(len(FLOORS))):
        standing = [folder for folder in FLOORS[number] if (source / folder).is_dir()]
        if standing:
            yield f"floor {number}"
            yield from map(line, standing)
    standing = [folder for folder in ADAPTERS if (source / folder).is_dir()]
    if standing:
        yield "beside the house"
        yield from map(line, standing)
