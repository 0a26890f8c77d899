#pragma once

#include <memory>

#include "hotkeys/hotkey_manager.h"
#include "input/input_state_machine.h"
#include "support/fake_generator.h"
#include "support/test_desktop.h"

namespace tavrelon::testing {

class FakeInputRecorder : public learning::InputRecorder {
 public:
    QStringList recorded;
    void recordInput(const QString& text) override { recorded << text; }
};

/// The input core and the hotkey listener on a desktop of fakes.
struct InputDesk : TestDesktop {
    persistence::StorageManager storage{defaultsStore, fileSystem, log, loop, platform.applicationSupport};
    persistence::HistoryManager history{fileSystem, log, platform.applicationSupport, 20};
    capture::ContextCapturer capturer{platform};
    output::OutputWriter writer{platform};
    FakeGenerator generator{loop};
    media::SpeechRecognizer recognizer{platform};
    media::WindowVideoRecorder recorder{platform, capturer, std::chrono::milliseconds(500), 24};
    FakeInputRecorder learner;
    std::shared_ptr<input::InputStateMachine> machine = std::make_shared<input::InputStateMachine>(
        input::InputServices{platform, capturer, generator, writer, history, storage, &learner, recorder});
    hotkeys::HotkeyManager hotkeys{platform};

    InputDesk() {
        screenCapture.permitted = true;
        screenCapture.addWindow(QStringLiteral("org.example.editor"), 100, 50, 'w');
        machine->setSpeechRecognizer(recognizer);
        hotkeys.stateMachine = machine;
        hotkeys.startListening();
        editor.open(QString());
    }

    template <typename Change>
    void change(Change settings) {
        storage.changeSettings(settings);
    }

    platform::TapVerdict press(const keys::HotkeyConfig& hotkey) {
        return eventTap.press(hotkey.keyCode, hotkey.modifiers);
    }

    /// Presses the toggle hotkey and lets the turn pass.
    void toggle() {
        press(hotkeys.toggleHotkey);
        loop.runUntilIdle();
    }

    /// A whole request: opens the input, types, commits.
    void request(const QString& text) {
        toggle();
        type(text);
        toggle();
    }

    /// Types into the editor under the eyes of the listener.
    void type(const QString& text) {
        for (const auto& character : text::characters(text))
            eventTap.press(0, {}, character.toString());
        editor.type(text);
    }

    input::InputState state() const { return machine->currentState(); }
};

}  // namespace tavrelon::testing
