#pragma once

#include <gmock/gmock.h>

#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/keys/x11_key_observer.h"
#include "support/key_window.h"
#include "support/recording_log.h"
#include "support/waiting.h"

namespace tavrelon::testing {

/// Running hotkeys, a window with the focus and a keyboard.
class HotkeysOnDesktop : public ::testing::Test {
 public:
    using WantedHotkey = platform::WantedHotkey;
    using Fires = WantedHotkey::Fires;
    static constexpr keys::Modifiers chord = keys::defaults::shiftOptionCommand;
    static constexpr unsigned chordState = 1 | 8 | 64;
    static constexpr WantedHotkey toggle{keys::defaults::toggleHotkey, Fires::OnPress};
    static constexpr WantedHotkey grave{keys::defaults::quickAskHotkey, Fires::OnPress};
    static constexpr WantedHotkey dictation{keys::defaults::voiceDictationHotkey, Fires::OnModifiersReleased};

    HotkeysOnDesktop() {
        hotkeys.declare({toggle, grave, dictation});
        const auto started = hotkeys.start([this](const WantedHotkey& hotkey) {
            told.push_back(hotkey);
            if (onTold)
                onTold();
        });
        if (!started)
            throw std::runtime_error(started.error().description.toStdString());
    }
    ~HotkeysOnDesktop() override {
        hotkeys.stop();
        EXPECT_THAT(keyboard.down(), ::testing::IsEmpty());
        if (HasFailure())
            for (const auto& line : log.lines())
                ADD_FAILURE() << "log: " << line.toStdString();
    }

    void observe() {
        ASSERT_TRUE(observer.start(
            {[this](const platform::KeyEvent& event) { typed += event.characters; }, [this] { ++left; }}));
    }

    void strikeToggle() { keyboard.strikeWith({place::leftShift, place::leftAlt, place::leftSuper}, place::l); }

    /// Strikes F12, which nobody holds, and waits until the window has it and a turn has passed: all that was struck
    /// before has had its effect then.
    [[nodiscard]] bool settle() {
        const auto before = std::ranges::count(window.presses(), place::f12);
        keyboard.strike(place::f12);
        if (!eventually([&] { return std::ranges::count(window.presses(), place::f12) > before; }))
            return false;
        hotkeys.declare(wantedNow);  // comes back once the keyboard's thread has done all that came before
        letPass(std::chrono::milliseconds(20));
        return true;
    }
    void declare(const std::vector<WantedHotkey>& wanted) {
        wantedNow = wanted;
        hotkeys.declare(wanted);
    }

    std::ptrdiff_t countTold(const WantedHotkey& hotkey) const { return std::ranges::count(told, hotkey); }

    desktop::QtMainLoop loop;
    RecordingLog log;
    std::shared_ptr<desktop::PostedKeys> posted = std::make_shared<desktop::PostedKeys>();
    XTestKeyboard keyboard;
    KeyWindow window;
    std::vector<WantedHotkey> wantedNow{toggle, grave, dictation};
    std::vector<WantedHotkey> told;
    std::function<void()> onTold;
    QString typed;
    int left = 0;
    desktop::X11Hotkeys hotkeys{loop, log, posted};
    desktop::X11KeyObserver observer{hotkeys};
};

}  // namespace tavrelon::testing
