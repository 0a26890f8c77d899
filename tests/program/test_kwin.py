"""The program in front of native windows of KWin: the main job, and whose the keys are."""

import kwin
import pytest
from conftest import ends_well, wait_for_history
from session import clipboard, set_clipboard

SHIFT_ALT_SUPER_G, ESCAPE = 0x1A000047, "hotkey-53-0-0"
BY_PASTE = "chromium-accessible"  # can be read by accessibility, but not written


@pytest.mark.parametrize("kind", ["mousepad", BY_PASTE])
def test_a_request_and_a_selection_are_replaced(desk, kind):
    editor, tavrelon = desk.open(kind, "前文 before  after"), desk.start()
    set_clipboard("precious")
    editor.go_to("前文 before ", " after")
    desk.answers("你好 answer")
    desk.request(tavrelon, editor, "what is 42?")
    wait_for_history(tavrelon, 1)
    assert desk.service.user_messages()[0].startswith("what is 42?")
    assert editor.saved("前文 before 你好 answer after") == "前文 before 你好 answer after"
    assert clipboard() == ("你好 answer" if kind == BY_PASTE else "precious")
    desk.keyboard.press("Control+End")
    editor.select_backward(5)
    desk.answers("AFTER")
    desk.begin(tavrelon)
    desk.commit()
    wait_for_history(tavrelon, 2)
    assert editor.saved("前文 before 你好 answer AFTER") == "前文 before 你好 answer AFTER"
    assert ends_well(tavrelon)
    assert "hotkey-" not in kwin.shortcuts()


def test_what_is_taken_stays_so_and_what_a_crash_leaves_is_let_go(desk):
    kwin.take_shortcut(SHIFT_ALT_SUPER_G)
    desk.open("mousepad")
    killed = desk.start()
    killed.wait_for_line(r"\[Hotkey\] Super\+Shift\+Alt\+G is another program's")
    desk.begin(killed)
    assert ESCAPE in kwin.shortcuts()
    killed.process.kill()
    killed.process.wait(10)
    again = desk.start()
    assert ESCAPE not in kwin.shortcuts()
    desk.begin(again)
    assert ends_well(again)
