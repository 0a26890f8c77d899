"""What users do in the dashboard while they work elsewhere."""

import json
import time

from soak_actions import answer_for, request_places, text_request
from waiting import Fault, wait_for

# The pages, each with something that is on it, in the two languages.
PAGES = [("Settings", "Vision Preference", "设置", "视觉偏好"), ("Hotkeys", "Restore Defaults", "快捷键", "恢复默认"),
         ("Clone", "Learn from Link", "克隆", "从链接学习"), ("Providers", "Ollama", "服务提供商", "Ollama"),
         ("History", "Clear All History", "历史记录", "清除所有历史记录"), ("Permissions", "Microphone", "权限", "麦克风")]
HOTKEYS = ["Control+Super+y", "Shift+Super+u", "Alt+Super+i", "F8"]
SWITCHES = [("Think", "enableNvidiaThink"), ("Local Memory", "enableLocalLearning"), ("Share Improvements", "shareImprovements")]


def record_hotkey(desk, chord):
    """Gives the hotkey for typed requests another chord."""
    before = desk.settings().get("toggleHotkey")
    desk.dashboard.show("Hotkeys", "Restore Defaults")
    desk.dashboard.windows.click("Text Input", "push button")
    time.sleep(0.3)
    desk.keyboard.press(chord)
    wait_for("the new hotkey in the settings", lambda: desk.settings().get("toggleHotkey") != before)
    desk.hotkey = chord


def look_at_all_pages(desk):
    desk.dashboard.open()
    for page, what, _, _ in PAGES:
        desk.dashboard.show(page, what)
    desk.dashboard.close()


def dashboard_pages(desk, dice, field):
    desk.dashboard.open()
    windows = desk.dashboard.windows
    for english, what, chinese, what_in_chinese in dice.sample(PAGES, 3):
        desk.dashboard.show(english, what)
        if dice.random() < 0.4:
            windows.click("中文")
            windows.wait_for(chinese, "page tab")
            windows.wait_for(what_in_chinese)
            windows.click("EN")
            windows.wait_for(english, "page tab")
    if dice.random() < 0.5:
        windows.click("Help")
        windows.wait_for("How to Use Tavrelon")
        windows.click("Done")
        wait_for("the end of the help", lambda: not windows.find("Done"))
    if dice.random() < 0.3:
        desk.dashboard.open()  # once more, which must be no harm
    desk.dashboard.close()
    field.focus()
    text_request(desk, dice, field)


def change_hotkey(desk, dice, field):
    """The new one begins a request at once, and the old one no longer does."""
    chord, old = dice.choice(HOTKEYS), desk.hotkey
    desk.dashboard.open()
    record_hotkey(desk, chord)
    field.focus()
    if not field.is_terminal:  # to which the old one is a character now
        mark = desk.mark()
        desk.press_when_free(old)
        time.sleep(0.5)
        if "Starting text listening" in desk.tavrelon.written()[mark:]:
            raise Fault("a hotkey works although another one was recorded")
    text_request(desk, dice, field)
    record_hotkey(desk, old)
    desk.dashboard.close()
    field.focus()
    text_request(desk, dice, field)


def change_settings_meanwhile(desk, dice, field):
    """While the model is asked, by a user of assistive technology: the focus stays in the field."""
    answer, (label, name) = answer_for(desk, dice, field), dice.choice(SWITCHES)
    desk.dashboard.open()
    desk.dashboard.show("Settings", "Vision Preference")
    field.focus()
    desk.service.answer_with({"content": answer, "delayMs": 2000})
    field.clear()
    mark = desk.begin()
    field.type(request_places(desk, dice))
    desk.commit(mark)
    was = desk.settings().get(name)
    desk.dashboard.windows.trigger(label)
    wait_for(f"{name} in the settings", lambda: desk.settings().get(name) != was)
    desk.wait_for_answer(answer)
    field.expect(answer)
    desk.dashboard.close()


def clear_history(desk, dice, field):
    text_request(desk, dice, field)
    desk.dashboard.open()
    desk.dashboard.show("History", "Clear All History")
    desk.dashboard.windows.click("Clear All History")
    wait_for("an empty history", lambda: json.loads(desk.tavrelon.history.read_text(encoding="utf-8")) == [])
    left = list((desk.tavrelon.history.parent / "history-images").iterdir())
    if left:
        raise Fault(f"pictures outlive the history: {left}")
    desk.dashboard.windows.wait_for("No history")
    desk.dashboard.close()


WEIGHTS = {dashboard_pages: 2, change_hotkey: 2, change_settings_meanwhile: 2, clear_history: 2}
