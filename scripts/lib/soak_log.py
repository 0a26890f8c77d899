"""What the program says about itself: no complaint without a reason."""

import re

from waiting import Fault

COMPLAINT = re.compile(r"fail|error(?!Success)|cannot|could not|not (stored|read)|broke off|gone|warning|critical|assert", re.IGNORECASE)
# What no run may have at all. Views warn through the log.
NEVER = re.compile(r"^(\[UI\]|QObject|QSocketNotifier|QTimer|qt\.|qrc:|terminate called)")
# A terminal without an accessible field is no fault.
ROUTINE = [re.compile(pattern) for pattern in (
    r"\[ContextCapturer\] Failed to get .*, error: kAXError(NoValue|AttributeUnsupported)$",)]


class Log:
    """Reads on from step to step. What a step explains counts for the next one too: some lines come late."""

    def __init__(self, program):
        self.program, self.read_up_to = program, 0
        self.earlier, self.explained = [], []

    def begin_step(self):
        self.earlier, self.explained = self.explained, []

    def explain(self, *patterns):
        """Names the complaints that what is done now will lead to."""
        self.explained += [re.compile(pattern) for pattern in patterns]

    def judge(self):
        new, _, _ = self.program.written()[self.read_up_to:].rpartition("\n")
        self.read_up_to += len(new)
        for line in new.splitlines():
            reasons = (*ROUTINE, *self.earlier, *self.explained)
            if NEVER.search(line) or COMPLAINT.search(line) and not any(reason.search(line) for reason in reasons):
                raise Fault(f"the log has a line that nothing explains: {line}")
