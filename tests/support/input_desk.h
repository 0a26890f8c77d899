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

/// The input core and the hotkey listener on whatever desktop the ports give, before a model of the test's own.
struct InputCore {
    explicit InputCore(platform::Platform& desktop) : ports(desktop) {
        machine->setSpeechRecognizer(recognizer);
        hotkeys.setStateMachine(machine);
        hotkeys.startListening();
    }

    platform::Platform& ports;
    persistence::StorageManager storage{ports.defaultsStore, ports.fileSystem, ports.log, ports.mainLoop,
                                        ports.applicationSupport};
    persistence::HistoryManager history{ports.fileSystem, ports.log, ports.applicationSupport, 20};
    capture::ContextCapturer capturer{ports};
    output::OutputWriter writer{ports};
    FakeGenerator generator{ports.mainLoop};
    media::SpeechRecognizer recognizer{ports};
    media::WindowVideoRecorder recorder{ports, capturer.screenshots, std::chrono::milliseconds(500), 24};
    FakeInputRecorder learner;
    std::shared_ptr<input::InputStateMachine> machine = std::make_shared<input::InputStateMachine>(
        input::InputServices{ports, capturer, generator, writer, history, storage, &learner, recorder});
    hotkeys::HotkeyManager hotkeys{ports};

    input::InputState state() const { return machine->currentState(); }
};

/// The input core on a desktop of fakes.
struct InputDesk : TestDesktop, InputCore {
    InputDesk() : InputCore(TestDesktop::platform) {
        screenCapture.permitted = true;
        screenCapture.addWindow(QStringLiteral("org.example.editor"), 100, 50, 'w');
        editor.open(QString());
    }

    template <typename Change>
    void change(Change settings) {
        storage.changeSettings(settings);
    }

    Taken press(const keys::HotkeyConfig& hotkey) { return keyboard.press(hotkey.keyCode, hotkey.modifiers); }

    static constexpr keys::VirtualKey noKey = 1000;

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
            keyboard.press(noKey, {}, character.toString());
        editor.type(text);
    }
};

}  // namespace tavrelon::testing
