"""What the demonstration shows. Keys place the caret or select; then the request is typed, or nothing."""

from dataclasses import dataclass, field


@dataclass
class Case:
    name: str
    before: str
    after: str
    request: str                 # what the service must hear
    answer: dict                 # what the service gives
    keys: list = field(default_factory=list)
    typed: str = ""              # the request as typed; empty if the selection is the request
    fails: bool = False


FRENCH = "Bonjour à tous 👋\nOn se voit demain ?"
CHINESE = "周三下午三点在二楼会议室开会📅"
POLITE = "Could you send me the report by Friday, please? 🙏"

CASES = [
    Case(name="empty field", before="", after=FRENCH, typed="greet the team in french",
         request="greet the team in french", answer={"content": FRENCH}),
    Case(name="middle of Chinese text", before="大家好😀，请尽快回复。", after=f"大家好😀，{CHINESE}请尽快回复。",
         keys=["ctrl+Home", *["Right"] * 5], typed="meeting on wednesday at three",
         request="meeting on wednesday at three", answer={"content": CHINESE}),
    Case(name="selection, nothing typed", before="Hello Zoe,\nsend report friday!!\nBye",
         after=f"Hello Zoe,\n{POLITE}\nBye", keys=["ctrl+Home", "Down", "Home", "shift+End"],
         request="send report friday!!", answer={"content": POLITE}),
    Case(name="model that fails", before="Notes: ", after="Notes: make this longer", keys=["ctrl+End"],
         typed="make this longer", request="make this longer", fails=True,
         answer={"status": 500, "body": '{"error": "out of order"}'}),
]
