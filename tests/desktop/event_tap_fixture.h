#pragma once

#include <gtest/gtest.h>

#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/x11_event_tap.h"
#include "support/key_window.h"
#include "support/recording_log.h"
#include "support/waiting.h"

namespace tavrelon::testing {

/// A running tap, a window with the focus and a keyboard. Hotkeys are dropped unless `verdict` is changed.
class EventTapOnDesktop : public ::testing::Test {
 public:
    static constexpr keys::Modifiers chord = keys::defaults::shiftOptionCommand;
    static constexpr unsigned chordState = 1 | 8 | 64;

    EventTapOnDesktop() { startWith({keys::defaults::toggleHotkey, keys::defaults::quickAskHotkey}); }
    ~EventTapOnDesktop() override {
        tap.stop();
        EXPECT_THAT(keyboard.down(), ::testing::IsEmpty());
        if (HasFailure())
            for (const auto& line : log.lines())
                ADD_FAILURE() << "log: " << line.toStdString();
    }

    void startWith(const std::vector<keys::HotkeyConfig>& hotkeys) {
        tap.setHotkeys(hotkeys);
        const auto started = tap.start([this](const platform::KeyEvent& event) {
            seen.push_back(event);
            return verdict(event);
        });
        ASSERT_TRUE(started) << started.error().description.toStdString();
    }

    void strikeToggle() { keyboard.strikeWith({place::leftShift, place::leftAlt, place::leftSuper}, place::l); }

    /// Strikes F12, which passes always, and waits until both the window and the handler have it: all that was struck
    /// before has had its effect then.
    [[nodiscard]] bool settle() {
        const auto before = std::ranges::count(window.presses(), place::f12);
        const auto seenBefore = countSeen(111);
        keyboard.strike(place::f12);
        return eventually(
            [&] { return std::ranges::count(window.presses(), place::f12) > before && countSeen(111) > seenBefore; });
    }

    std::ptrdiff_t countSeen(keys::VirtualKey key) const {
        return std::ranges::count_if(seen, [&](const auto& event) {
            return event.type == platform::KeyEvent::Type::KeyDown && event.keyCode == key;
        });
    }

    static platform::TapVerdict dropAll(const platform::KeyEvent&) { return platform::TapVerdict::Drop; }
    static platform::TapVerdict passAll(const platform::KeyEvent&) { return platform::TapVerdict::Pass; }

    desktop::QtMainLoop loop;
    RecordingLog log;
    std::shared_ptr<desktop::PostedKeys> posted = std::make_shared<desktop::PostedKeys>();
    XTestKeyboard keyboard;
    KeyWindow window;
    std::vector<platform::KeyEvent> seen;
    std::function<platform::TapVerdict(const platform::KeyEvent&)> verdict = dropAll;
    desktop::X11EventTap tap{loop, log, posted};
};

}  // namespace tavrelon::testing
