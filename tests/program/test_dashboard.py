"""The dashboard of the program itself, driven by mouse and keyboard and read over the accessibility bus."""

from pathlib import Path

import pytest
import screen
from editors import clipboard, let_keys_arrive
from conftest import ends_well, history, settings_of, wait_for_history
from dashboard import Dashboard
from waiting import wait_for


@pytest.fixture
def shown(desk):
    """The program as a user starts it, with its dashboard."""
    tavrelon = desk.start(arguments=())
    dashboard = Dashboard(tavrelon, desk.keyboard)
    dashboard.wait_until_open()
    return tavrelon, dashboard


def press(dashboard, name, role=None):
    dashboard.windows.click(name, role)
    let_keys_arrive()


def scroll_down(dashboard, what):
    """Scrolls the page, over which the mouse comes to stand, until this is in sight."""
    screen.run("xdotool", "mousemove", "640", "480")
    wait_for(f"'{what}' in sight", lambda: screen.run("xdotool", "click", "--repeat", "5", "5") and
             dashboard.windows.find(what), 20, pause=0.3)
    let_keys_arrive()


def type_text(text):
    screen.type_text(text)
    let_keys_arrive()


def stored(tavrelon, name, value):
    wait_for(f"{name} {value!r} in the settings", lambda: settings_of(tavrelon).get(name) == value, 20)
    return True


def pdf(text):
    """A document of one page with this text."""
    page = f"BT /F1 4 Tf 20 700 Td ({text}) Tj ET"
    return ("%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
            "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 612 792]/Contents 4 0 R/Resources<</Font<</F1 5 0 R>>>>>>endobj\n"
            f"4 0 obj<</Length {len(page)}>>stream\n{page}\nendstream endobj\n"
            "5 0 obj<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>endobj\ntrailer<</Root 1 0 R>>\n%%EOF\n")


def test_a_recorded_hotkey_works_in_an_editor_without_a_restart(desk, shown):
    tavrelon, dashboard = shown
    press(dashboard, "Hotkeys")
    press(dashboard, "Text Input", "push button")
    # The old hotkey of the master switch is as good as any other and switches nothing off meanwhile.
    desk.keyboard.press("Super+Alt+Shift+k")
    wait_for("the new hotkey", lambda: settings_of(tavrelon).get("toggleHotkey", {}).get("keyCode") == 40, 20)
    assert settings_of(tavrelon).get("hotkeysEnabled", True)
    press(dashboard, "Text Input", "push button")
    desk.keyboard.press("Control+Super+y")
    assert stored(tavrelon, "toggleHotkey", {"keyCode": 16, "modifiersRaw": 0x140000})
    press(dashboard, "Text Input", "push button")  # and is left recording

    editor = desk.open("mousepad")
    desk.answers("ANSWER")
    desk.begin(tavrelon, "Control+Super+y")
    editor.type("a poem")
    desk.commit("Control+Super+y")
    wait_for_history(tavrelon, 1)
    assert editor.saved("ANSWER") == "ANSWER"
    assert ends_well(tavrelon)


def test_the_first_answer_comes_into_the_field_of_the_first_page(desk, shown):
    tavrelon, dashboard = shown
    desk.answers("forty-two\n(42)")
    press(dashboard, "Try it here")
    type_text("before ")
    desk.begin(tavrelon)
    desk.keyboard.type_places("what")
    desk.commit()
    wait_for_history(tavrelon, 1)
    assert stored(tavrelon, "hasAnswered", True)
    tavrelon.wait_for_line(r"\[StateMachine\] Writing ended")
    dashboard.windows.wait_for("That was it. It works like this in every application.")
    desk.keyboard.press("Control+a")
    desk.keyboard.press("Control+c")
    wait_for("the answer in the field", lambda: clipboard() == "before forty-two\n(42)", 20)
    dashboard.close()
    assert ends_well(tavrelon)


def test_a_number_is_taken_when_its_field_is_left_and_nonsense_is_not(desk, shown):
    tavrelon, dashboard = shown

    def enter(keys):
        scroll_down(dashboard, "Voice Input: Timeout")
        press(dashboard, "Voice Input: Timeout")
        desk.keyboard.press("Control+a")
        desk.keyboard.type_places(keys)
        let_keys_arrive()

    press(dashboard, "Hotkeys")
    enter("45")
    press(dashboard, "Settings")  # leaves the page with the field
    assert stored(tavrelon, "voiceInputSilenceTimeoutSeconds", 30)
    press(dashboard, "Hotkeys")
    enter("as")
    desk.keyboard.press("Return")
    enter("5")
    desk.keyboard.press("Return")
    assert stored(tavrelon, "voiceInputSilenceTimeoutSeconds", 5)
    assert ends_well(tavrelon)


def test_tab_walks_through_named_controls_and_space_presses_them(desk, shown):
    tavrelon, dashboard = shown
    windows, walked = dashboard.windows, []
    wanted = ["Settings", "Hotkeys", "Permissions", "Help", "中文", "Try it here", "Speed", "Quality", "Think",
              "Local Memory", "Share Improvements", "Image Prompt Enhancement"]
    while wanted[-1] not in walked and len(walked) < 30:
        desk.keyboard.press("Tab")
        walked.append(windows.newly_focused(walked[-1] if walked else None))
    assert [name for name in walked if name in wanted] == wanted
    assert "" not in walked, "a stop without a name"
    desk.keyboard.press("space")
    assert stored(tavrelon, "enableImagePromptEnhancement", False)

    press(dashboard, "中文")
    windows.wait_for("视觉偏好")
    assert settings_of(tavrelon)["appLanguage"] == "zh"
    press(dashboard, "快捷键")
    windows.wait_for("恢复默认")
    press(dashboard, "EN")
    windows.wait_for("Restore Defaults")
    dashboard.close()
    assert ends_well(tavrelon)


def test_a_profile_is_learned_from_a_document_that_the_user_chooses(desk, shown):
    tavrelon, dashboard = shown
    (Path.home() / "letters.pdf").write_text(pdf("The weather in Somerset is fine. " * 8))
    desk.answers('{"system_prompt": "I am Ada.", "language_style": "Dry."}')
    windows = dashboard.windows
    press(dashboard, "Clone")
    press(dashboard, "Learn from File")
    windows.wait_for("Choose a file first.")
    press(dashboard, "Choose File")
    windows.wait_for("letters.pdf")
    type_text("letters.pdf")
    press(dashboard, "Look in:")  # closes the list of completions
    press(dashboard, "Open")
    wait_for("the end of the dialog", lambda: not screen.window_named("^Choose File$"), 20)
    windows.wait_for("letters.pdf")
    press(dashboard, "Learn from File")
    windows.wait_for("Clone profile updated.")
    assert settings_of(tavrelon)["cloneSystemPrompt"] == "I am Ada."
    assert "The weather in Somerset is fine." in str(desk.asked()[-1]["body"])

    scroll_down(dashboard, "Clear")
    press(dashboard, "Clear")
    windows.wait_for("No system prompt learned yet")
    assert stored(tavrelon, "cloneSystemPrompt", "")
    assert ends_well(tavrelon)


def test_the_next_request_goes_to_the_provider_that_was_switched_on_and_is_in_the_history(desk, shown):
    tavrelon, dashboard = shown
    windows, endpoint = dashboard.windows, f"http://127.0.0.1:{desk.service.port}/api/chat"
    desk.answers("An ode to the harbour.")
    for name in ("Providers", "Ollama", "Enable Ollama Vision", "Local", "Endpoint"):
        press(dashboard, name)
    desk.keyboard.press("Control+a")
    type_text(endpoint)
    assert stored(tavrelon, "ollamaLocalEndpoint", endpoint)
    assert not settings_of(tavrelon)["enableCustomPollinations"]
    editor = desk.open("mousepad")
    desk.request(tavrelon, editor, "a poem")
    wait_for_history(tavrelon, 1)
    assert "/api/chat" in [request["path"] for request in desk.asked()]
    editor.stop()

    press(dashboard, "History")
    press(dashboard, "Search...")
    type_text("nowhere")
    windows.wait_for("No history")
    desk.keyboard.press("Control+a")
    type_text("HARBOUR")
    desk.keyboard.press("Tab")
    desk.keyboard.press("space")
    windows.wait_for("1 entry")
    windows.wait_for("AI")
    press(dashboard, "Clear All History")
    windows.wait_for("Choose an application to see its requests")
    wait_for("an empty history", lambda: history(tavrelon) == [], 20)
    assert ends_well(tavrelon)
