#include <gmock/gmock.h>

#include "desktop/event_tap_fixture.h"
#include "desktop/x11/x11_key_poster.h"

namespace tavrelon::testing {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class KeyPosterOnDesktop : public EventTapOnDesktop {
 public:
    static constexpr int control = 4;

    KeyPosterOnDesktop() {
        auto opened = desktop::X11KeyPoster::open(loop, posted);
        if (!opened)
            throw std::runtime_error(opened.error().toStdString());
        poster = std::move(*opened);
    }
    ~KeyPosterOnDesktop() override {
        poster.reset();
        EXPECT_THAT(keyboard.downOnPostingDevice(), IsEmpty());
    }

    std::unique_ptr<desktop::X11KeyPoster> poster;
};

TEST_F(KeyPosterOnDesktop, KeysArriveAsPostedAndTheTapLeavesThemOut) {
    poster->press(keys::keyV, keys::commandFlag);
    poster->press(keys::keyBackspace, keys::noModifiers);
    poster->press(keys::keyGrave, keys::noModifiers);  // a hotkey if the user strikes it
    ASSERT_TRUE(settle());
    EXPECT_THAT(window.presses(), ElementsAre(place::v, place::backspace, place::grave, place::f12));
    EXPECT_EQ(window.stateOf(place::v), control);
    EXPECT_EQ(window.stateOf(place::backspace), 0);
    EXPECT_EQ(seen.size(), 1U) << "only the F12 of the user";
    EXPECT_THAT(keyboard.downOnPostingDevice(), IsEmpty());
}

TEST_F(KeyPosterOnDesktop, HeldModifiersDoNotReachPostedKeysAndComeBack) {
    for (const auto code : {place::leftShift, place::leftAlt, place::leftSuper})
        keyboard.press(code);
    {
        const platform::ModifiersAside outer(*poster);
        poster->press(keys::keyBackspace, keys::noModifiers);
        {
            const platform::ModifiersAside inner(*poster);
            poster->press(keys::keyV, keys::commandFlag);
        }
        poster->press(keys::keyEscape, keys::noModifiers);
    }
    keyboard.strike(place::x);  // the user still holds all three
    ASSERT_TRUE(spinUntil([&] { return window.got(place::x); }));
    EXPECT_EQ(window.stateOf(place::backspace), 0);
    EXPECT_EQ(window.stateOf(place::v), control);
    EXPECT_EQ(window.stateOf(place::escape), 0);
    EXPECT_EQ(window.stateOf(place::x), static_cast<int>(chordState));

    for (const auto code : {place::leftShift, place::leftAlt, place::leftSuper})
        keyboard.release(code);
    EXPECT_TRUE(spinUntil([&] { return keyboard.downOnPostingDevice().empty(); }));
    EXPECT_THAT(keyboard.down(), IsEmpty());
    poster->press(keys::keyV, keys::commandFlag);
    ASSERT_TRUE(settle());
    EXPECT_EQ(window.stateOf(place::v), control);
    EXPECT_EQ(window.stateOf(place::f12), 0);
}

}  // namespace tavrelon::testing
