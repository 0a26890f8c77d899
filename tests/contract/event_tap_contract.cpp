// What every event tap does, the fake and the one of the X server.
#include <gmock/gmock.h>

#include <array>
#include <memory>

#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/x11_event_tap.h"
#include "support/fake_event_tap.h"
#include "support/key_window.h"
#include "support/qt_gtest.h"
#include "support/recording_log.h"
#include "support/waiting.h"

namespace tavrelon::testing {

namespace {

using platform::KeyEvent;
using platform::TapVerdict;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A tap together with the keyboard in front of it and the application behind it.
class EventTapBench {
 public:
    struct Key {
        keys::VirtualKey key = 0;
        keys::Modifiers flags;

        bool operator==(const Key&) const = default;
    };

    static constexpr keys::VirtualKey mark = 111;

    virtual ~EventTapBench() = default;
    virtual platform::EventTap& tap() = 0;

    /// Presses the modifiers one by one, strikes the key, and lets the modifiers go.
    virtual void strike(const Key& key) = 0;

    /// The ordinary keys that the application has got, once all that was struck is through.
    virtual std::vector<Key> received() = 0;
};

class FakeTapBench : public EventTapBench {
 public:
    platform::EventTap& tap() override { return tap_; }

    void strike(const Key& key) override {
        std::vector<keys::Modifiers> steps{keys::noModifiers};
        for (const auto flag : {keys::controlFlag, keys::optionFlag, keys::shiftFlag, keys::commandFlag}) {
            if (!key.flags.contains(flag))
                continue;
            steps.push_back(steps.back() | flag);
            tap_.flagsChanged(steps.back());
        }
        tap_.press(key.key, key.flags);
        for (steps.pop_back(); key.flags != keys::noModifiers && !steps.empty(); steps.pop_back())
            tap_.flagsChanged(steps.back());
    }

    std::vector<Key> received() override {
        std::vector<Key> keys;
        for (const auto& event : tap_.receivedByApplication())
            if (event.type == KeyEvent::Type::KeyDown)
                keys.push_back({event.keyCode, event.modifierFlags});
        return keys;
    }

 private:
    FakeEventTap tap_;
};

class X11TapBench : public EventTapBench {
 public:
    platform::EventTap& tap() override { return tap_; }

    void strike(const Key& key) override {
        std::vector<place::Code> modifiers;
        for (const auto& [flag, code, state] : flags)
            if (key.flags.contains(flag))
                modifiers.push_back(code);
        for (const auto code : modifiers)
            keyboard_.press(code);
        keyboard_.strike(key.key == keys::keyL ? place::l : place::a);
        for (; !modifiers.empty(); modifiers.pop_back())
            keyboard_.release(modifiers.back());
    }

    std::vector<Key> received() override {
        // The mark behind the last key has arrived, so all before it has. One more turn brings the handler's share.
        const auto marks = std::ranges::count(window_.presses(), place::f12);
        keyboard_.strike(place::f12);
        EXPECT_TRUE(eventually([&] { return std::ranges::count(window_.presses(), place::f12) > marks; }));
        letPass(std::chrono::milliseconds(100));
        std::vector<Key> keys;
        for (const auto& stroke : window_.strokes())
            if (stroke.isPress && (stroke.code == place::a || stroke.code == place::l))
                keys.push_back({stroke.code == place::a ? keys::keyA : keys::keyL, flagsOf(stroke.state)});
        return keys;
    }

 private:
    struct Flag {
        keys::Modifiers flag;
        place::Code code;
        unsigned state;
    };
    static constexpr std::array<Flag, 4> flags{{{keys::controlFlag, place::leftControl, 4},
                                                {keys::optionFlag, place::leftAlt, 8},
                                                {keys::shiftFlag, place::leftShift, 1},
                                                {keys::commandFlag, place::leftSuper, 64}}};

    static keys::Modifiers flagsOf(unsigned state) {
        auto held = keys::noModifiers;
        for (const auto& flag : flags)
            if (state & flag.state)
                held = held | flag.flag;
        return held;
    }

    desktop::QtMainLoop loop_;
    RecordingLog log_;
    XTestKeyboard keyboard_;
    KeyWindow window_;
    desktop::X11EventTap tap_{loop_, log_, std::make_shared<desktop::PostedKeys>()};
};

class EventTapContract : public ::testing::TestWithParam<bool> {
 public:
    using Key = EventTapBench::Key;

    void start(TapVerdict verdict) {
        ASSERT_TRUE(bench->tap().start([this, verdict](const KeyEvent& event) {
            seen.push_back(event);
            return verdict;
        }));
    }

    /// The keys that the handler got, but for the mark that a bench may strike to find the end.
    std::vector<Key> keysSeen() const {
        std::vector<Key> keys;
        for (const auto& event : seen)
            if (event.type == KeyEvent::Type::KeyDown && event.keyCode != EventTapBench::mark)
                keys.push_back({event.keyCode, event.modifierFlags & keys::relevantModifierMask});
        return keys;
    }

    static constexpr Key hotkey{keys::keyL, keys::defaults::shiftOptionCommand};
    static constexpr Key plainA{keys::keyA, keys::noModifiers};

    std::unique_ptr<EventTapBench> bench =
        GetParam() ? std::unique_ptr<EventTapBench>(std::make_unique<X11TapBench>()) : std::make_unique<FakeTapBench>();
    std::vector<KeyEvent> seen;
};

TEST_P(EventTapContract, OnlyHotkeysCanBeDropped) {
    bench->tap().setHotkeys({keys::defaults::toggleHotkey});
    start(TapVerdict::Drop);
    bench->strike(hotkey);
    bench->strike(plainA);
    EXPECT_THAT(bench->received(), ElementsAre(plainA));
    EXPECT_THAT(keysSeen(), ElementsAre(hotkey, plainA));
}

TEST_P(EventTapContract, WhatPassesReachesTheApplicationUnchanged) {
    bench->tap().setHotkeys({keys::defaults::toggleHotkey});
    start(TapVerdict::Pass);
    bench->strike(hotkey);
    EXPECT_THAT(bench->received(), ElementsAre(hotkey));
    EXPECT_THAT(keysSeen(), ElementsAre(hotkey));
}

TEST_P(EventTapContract, ModifiersAreToldWithTheFlagsAfterTheChange) {
    start(TapVerdict::Pass);
    bench->strike({keys::keyA, keys::controlFlag | keys::shiftFlag});
    bench->received();
    std::vector<keys::Modifiers> flags;
    for (const auto& event : seen)
        if (event.type == KeyEvent::Type::FlagsChanged)
            flags.push_back(event.modifierFlags);
    EXPECT_THAT(flags, ElementsAre(keys::controlFlag, keys::controlFlag | keys::shiftFlag, keys::controlFlag,
                                   keys::noModifiers));
}

TEST_P(EventTapContract, NewHotkeysHoldAtOnce) {
    start(TapVerdict::Drop);
    bench->strike(plainA);
    EXPECT_THAT(bench->received(), ElementsAre(plainA));
    bench->tap().setHotkeys({{keys::keyA, keys::noModifiers}});
    bench->strike(plainA);
    EXPECT_THAT(bench->received(), ElementsAre(plainA)) << "only the one from before";
}

TEST_P(EventTapContract, NothingIsSeenOrDroppedAfterStopAndItStartsAgain) {
    bench->tap().setHotkeys({keys::defaults::toggleHotkey});
    start(TapVerdict::Drop);
    bench->tap().stop();
    bench->tap().stop();
    bench->strike(hotkey);
    EXPECT_THAT(bench->received(), ElementsAre(hotkey));
    EXPECT_THAT(seen, IsEmpty());
    start(TapVerdict::Drop);
    bench->strike(hotkey);
    EXPECT_THAT(bench->received(), ElementsAre(hotkey)) << "the hotkeys are still known";
    EXPECT_THAT(keysSeen(), ElementsAre(hotkey));
}

INSTANTIATE_TEST_SUITE_P(OnTheFakeAndOnAServer, EventTapContract, ::testing::Bool());

}  // namespace

}  // namespace tavrelon::testing
