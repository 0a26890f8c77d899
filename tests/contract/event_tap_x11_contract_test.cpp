#include <array>

#include "contract/event_tap_contract.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/x11_event_tap.h"
#include "support/key_window.h"
#include "support/recording_log.h"

namespace tavrelon::testing {

namespace {

class X11Bench : public EventTapBench {
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
        EXPECT_TRUE(spinUntil([&] { return std::ranges::count(window_.presses(), place::f12) > marks; }));
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
        spinUntil([&] { return std::chrono::steady_clock::now() > end; });
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

}  // namespace

INSTANTIATE_TEST_SUITE_P(X11, EventTapContract, ::testing::Values([]() -> std::unique_ptr<EventTapBench> {
                             return std::make_unique<X11Bench>();
                         }));

}  // namespace tavrelon::testing
