#pragma once

#include <gmock/gmock.h>

#include <memory>

#include "platform/event_tap.h"

namespace tavrelon::testing {

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

using MakeEventTapBench = std::unique_ptr<EventTapBench> (*)();

/// What every event tap does. Includers name their benches with INSTANTIATE_TEST_SUITE_P.
class EventTapContract : public ::testing::TestWithParam<MakeEventTapBench> {
 public:
    using Key = EventTapBench::Key;

    void start(platform::TapVerdict verdict) {
        ASSERT_TRUE(bench->tap().start([this, verdict](const platform::KeyEvent& event) {
            seen.push_back(event);
            return verdict;
        }));
    }

    /// The keys that the handler got, but for the mark that a bench may strike to find the end.
    std::vector<Key> keysSeen() const {
        std::vector<Key> keys;
        for (const auto& event : seen)
            if (event.type == platform::KeyEvent::Type::KeyDown && event.keyCode != EventTapBench::mark)
                keys.push_back({event.keyCode, event.modifierFlags & keys::relevantModifierMask});
        return keys;
    }

    static constexpr Key hotkey{keys::keyL, keys::defaults::shiftOptionCommand};
    static constexpr Key plainA{keys::keyA, keys::noModifiers};

    std::unique_ptr<EventTapBench> bench = GetParam()();
    std::vector<platform::KeyEvent> seen;
};

}  // namespace tavrelon::testing
