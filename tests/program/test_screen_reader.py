"""The dashboard as a screen reader reads it and the Tab key walks it: what has no name or no stop is not there for its users."""

import json
import subprocess

import screen
from accessible import CHECKED, FOCUSABLE, FOCUSED, ON_SCREEN, SELECTED, SENSITIVE, VISIBLE
from conftest import ends_well
from dashboard import Dashboard
from waiting import Fault, wait_for

ENTRY = {"id": "0A1B2C3D-0000-4000-8000-00000000ABCD", "timestamp": 0.0, "inputText": "a poem", "outputText": "An ode.",
         "appBundleID": "org.example.notes", "appName": "Notes", "wasReverted": False, "wasEdited": True, "retryCount": 0}

# What each page says beside its controls, and the states that some of these tell.
PAGES = {
    "Settings": ({"Tavrelon: Active", "Vision Preference", "Prioritize speed or quality for vision models", "Learned Voice"},
                 {("radio button", "Speed"): CHECKED, ("check box", "Local Memory"): CHECKED}),
    "Hotkeys": ({"Hotkeys", "Enabled"}, {("check box", "Text Input"): CHECKED}),
    "Clone": ({"Clone", "Link", "File", "No file selected", "System Prompt", "No system prompt learned yet"}, {}),
    "Providers": ({"Providers", "NVIDIA"}, {("page tab", "NVIDIA"): SELECTED, ("page tab", "Pollinations"): CHECKED}),
    "History": ({"Notes", "1 entry", "You", "AI"}, {}),
    "Permissions": ({"Permissions", "Accessibility", "Required for hotkeys", "Microphone"}, {}),
}


class Reader:
    def __init__(self, tavrelon, keyboard):
        self.tavrelon, self.keyboard = tavrelon, keyboard
        self.dashboard = Dashboard(tavrelon, keyboard)
        self.dashboard.wait_until_open()
        self.windows = self.dashboard.windows

    def elements(self):
        return self.windows.all_within("Tavrelon", "frame")

    def stops(self):
        """What is in sight and the Tab key has to come to. The toolkit calls labels focusable, which they are not."""
        return [each for each in self.elements()
                if each.role not in ("label", "frame") and self.windows.has(each, FOCUSABLE, VISIBLE, SENSITIVE)]

    def focused(self):
        """The innermost: the toolkit says of a list, too, that it is focused while one of its rows is."""
        focused = [each for each in self.windows.in_sight() if each.role != "frame" and self.windows.has(each, FOCUSED)]
        return focused[-1] if focused else None

    def next_stop(self, previous):
        """By Tab. Elements of one name and role that follow each other are told apart by their places."""
        self.keyboard.press("Tab")

        def look():
            found = self.focused()
            return found and (found.handle != previous.handle if previous else True) and found
        return wait_for("another focus", look, 20)

    def place(self, element):
        where = self.windows.bus.extents_of(element.handle, ON_SCREEN, None).contents
        return where.x, where.y, where.width, where.height


def has_ring(reader, element, folder):
    """Whether the colour of the focus ring is seen around it."""
    x, y, width, height = reader.place(element)
    picture = folder / "focus.ppm"
    screen.picture(picture)
    cut = subprocess.run(["convert", str(picture), "-crop", f"{width + 8}x{height + 8}+{max(0, x - 4)}+{max(0, y - 4)}",
                          "+repage", "-depth", "8", "rgb:-"], capture_output=True, timeout=20).stdout
    pixels = zip(cut[0::3], cut[1::3], cut[2::3])
    return sum(red < 140 and green > 190 and 130 < blue < 210 for red, green, blue in pixels) > 2 * width


def walk(reader):
    """All stops from the first round to the one where it began."""
    first = reader.next_stop(None)
    walked, current = [first], first
    while len(walked) < 60:
        current = reader.next_stop(current)
        if current.handle == first.handle:
            return walked
        walked.append(current)
    raise Fault(f"the walk does not come round: {[each.name for each in walked]}")


def read(reader, page):
    said, controls = PAGES[page]
    wait_for(f"{said} on the page {page}", lambda: said <= {each.name for each in reader.elements()}, 20)
    found = {(each.role, each.name): each for each in reader.elements()}
    for control, state in {**controls, ("page tab", page): SELECTED}.items():
        assert control in found, (page, sorted(found))
        assert reader.windows.has(found[control], state), (page, control)


def test_each_page_is_read_whole_and_walked_in_the_order_of_reading(desk, tmp_path):
    def with_history(home):
        folder = home / "data/Tavrelon"
        folder.mkdir(parents=True, mode=0o700)
        (folder / "history.json").write_text(json.dumps([ENTRY]), encoding="utf-8")

    reader = Reader(desk.start(arguments=(), prepare=with_history), desk.keyboard)
    for page in PAGES:
        reader.windows.click(page, "page tab")
        if page == "History":
            row = wait_for("the application", lambda: next(
                (each for each in reader.windows.in_sight() if each.role == "list item"), None), 20)
            assert row.name.startswith("Notes, 1 entry, ")
            reader.windows.click(row.name)
        read(reader, page)
        stops, walked = reader.stops(), walk(reader)
        assert all(each.name for each in walked), (page, walked)
        assert not [each for each in stops if each.handle not in {stop.handle for stop in walked}], page
        place = {each.handle: index for index, each in enumerate(reader.elements())}
        order = [place[each.handle] for each in walked]
        turns = sum(later < earlier for earlier, later in zip(order, order[1:]))
        assert turns <= 1, (page, [each.name for each in walked])  # it may begin in the middle
        assert has_ring(reader, reader.focused(), tmp_path), (page, reader.focused())
    assert ends_well(reader.tavrelon)
