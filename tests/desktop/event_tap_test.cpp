#include <gmock/gmock.h>

#include "desktop/event_tap_fixture.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

using platform::KeyEvent;
using platform::TapVerdict;
using ::testing::ElementsAre;

TEST_F(EventTapOnDesktop, DropsWhatItIsToldToAndPassesTheRest) {
    strikeToggle();
    keyboard.strike(place::a);
    ASSERT_TRUE(settle());
    EXPECT_THAT(window.presses(), ElementsAre(place::a, place::f12));
    EXPECT_EQ(countSeen(37), 1);
    EXPECT_EQ(countSeen(0), 1);

    window.clear();
    verdict = passAll;
    strikeToggle();
    keyboard.strike(place::grave);
    ASSERT_TRUE(settle());
    EXPECT_THAT(window.presses(), ElementsAre(place::l, place::grave, place::f12));
    EXPECT_EQ(window.stateOf(place::l), static_cast<int>(chordState));
}

}  // namespace tavrelon::testing
