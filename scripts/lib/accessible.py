"""A program's windows as assistive technology sees them: what is in sight, by name and role, and where it is."""

import ctypes
from dataclasses import dataclass

import screen
from waiting import Fault, wait_for

ON_SCREEN, NOTHING = 0, 0  # as the library numbers them
CHECKED, FOCUSABLE, FOCUSED, SELECTED, SENSITIVE, SHOWING, VISIBLE = 4, 11, 12, 23, 24, 25, 30
MILLISECONDS_TO_ANSWER = 3000


class Rectangle(ctypes.Structure):
    _fields_ = [(name, ctypes.c_int) for name in ("x", "y", "width", "height")]


@dataclass
class Element:
    name: str
    role: str
    handle: int


class Bus:
    """The accessibility bus, through the library that its clients use. What it hands out is never given back: a script ends soon."""

    def __init__(self):
        library, pointer, number = ctypes.CDLL("libatspi.so.0"), ctypes.c_void_p, ctypes.c_int

        def function(name, result, *arguments):
            found = getattr(library, "atspi_" + name)
            found.restype, found.argtypes = result, arguments
            return found

        function("init", number)()
        function("set_timeout", None, number, number)(MILLISECONDS_TO_ANSWER, MILLISECONDS_TO_ANSWER)
        self.desktop = function("get_desktop", pointer, number)(0)
        self.count = function("accessible_get_child_count", number, pointer, pointer)
        self.child = function("accessible_get_child_at_index", pointer, pointer, number, pointer)
        self.keep = function("accessible_set_cache_mask", None, pointer, number)
        self.name_of = function("accessible_get_name", ctypes.c_char_p, pointer, pointer)
        self.role_of = function("accessible_get_role_name", ctypes.c_char_p, pointer, pointer)
        self.states_of = function("accessible_get_state_set", pointer, pointer)
        self.contains = function("state_set_contains", number, pointer, number)
        self.extents_of = function("component_get_extents", ctypes.POINTER(Rectangle), pointer, number, pointer)
        self.act = function("action_do_action", number, pointer, number, pointer)
        self.text_of = function("text_get_text", ctypes.c_char_p, pointer, number, number, pointer)

    def children(self, handle):
        found = (self.child(handle, index, None) for index in range(max(0, self.count(handle, None))))
        return [child for child in found if child]

    def name(self, handle):
        return (self.name_of(handle, None) or b"").decode()

    def program(self, name):
        for handle in self.children(self.desktop):
            if self.name(handle) == name:
                self.keep(handle, NOTHING)  # what is kept is wrong as soon as the program changes it
                return handle
        return None


class Windows:
    """The windows of one running program, as a mouse and as assistive technology reach them."""

    def __init__(self, name):
        self.bus = Bus()
        self.program = wait_for(f"{name} on the accessibility bus", lambda: self.bus.program(name), 20)

    def in_sight(self):
        elements, handles = [], [self.program]
        while handles:
            handle = handles.pop()
            states = self.bus.states_of(handle)
            if states and self.bus.contains(states, SHOWING):
                role = (self.bus.role_of(handle, None) or b"").decode()
                elements.append(Element(self.bus.name(handle), role, handle))
            handles += reversed(self.bus.children(handle))
        return elements

    def has(self, element, *wanted):
        """Whether all these states are set."""
        states = self.bus.states_of(element.handle)
        return bool(states) and all(self.bus.contains(states, state) for state in wanted)

    def text(self, name):
        """What a field of that name holds; Qt ends its paragraphs with a sign of their own."""
        return (self.bus.text_of(self.wait_for(name).handle, 0, -1, None) or b"").decode().replace("\u2029", "\n")

    def all_within(self, name, role):
        """What is below this element, scrolled out of sight or not, in the order in which a screen reader reads it."""
        elements, handles = [], list(reversed(self.bus.children(self.wait_for(name, role).handle)))
        while handles:
            handle = handles.pop()
            elements.append(Element(self.bus.name(handle), (self.bus.role_of(handle, None) or b"").decode(), handle))
            handles += reversed(self.bus.children(handle))
        return elements

    def find(self, name, role=None):
        return next((each for each in self.in_sight() if each.name == name and role in (None, each.role)), None)

    def wait_for(self, name, role=None):
        return wait_for(f"'{name}' in sight", lambda: self.find(name, role), 20, pause=0.1)

    def newly_focused(self, previous):
        """The name of what has the focus, once that is something else; the previous one when nothing comes."""
        def look():
            for each in self.in_sight():
                states = self.bus.states_of(each.handle)
                if each.role != "frame" and each.name != previous and states and self.bus.contains(states, FOCUSED):
                    return each
            return None
        try:
            return wait_for("another focus", look, 2).name
        except Fault:
            return previous

    def click(self, name, role=None):
        place = self.bus.extents_of(self.wait_for(name, role).handle, ON_SCREEN, None)
        if not place:
            raise Fault(f"'{name}' has no place")
        where = place.contents
        screen.answer("xdotool", "mousemove", str(where.x + where.width // 2), str(where.y + where.height // 2), "click", "1")

    def trigger(self, name, role=None):
        """Does what a press would do, without mouse and focus."""
        if not self.bus.act(self.wait_for(name, role).handle, 0, None):
            raise Fault(f"'{name}' cannot be triggered")
