#include <gmock/gmock.h>

#include "desktop/event_tap_fixture.h"
#include "desktop/x11/x11_key_poster.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

using ::testing::ElementsAre;
using namespace std::chrono_literals;

class LayoutsOnDesktop : public EventTapOnDesktop {
 public:
    ~LayoutsOnDesktop() override { useLayout("us"); }

    void useLayout(const char* layouts) { ASSERT_TRUE(runProgram({"setxkbmap", "-layout", layouts})); }

    /// Strikes a key until the tap reads it with the wanted text: it follows a new map within moments.
    [[nodiscard]] bool types(place::Code code, const QString& text) {
        return eventually([&] {
            seen.clear();
            keyboard.strike(code);
            return settle() && !seen.empty() && seen.front().characters == text;
        });
    }
};

TEST_F(LayoutsOnDesktop, FollowsTheLayoutOfTheUser) {
    useLayout("de");
    tap.setHotkeys({{16, chord}, keys::defaults::quickAskHotkey});  // Y
    ASSERT_TRUE(types(place::y, QStringLiteral("z")));
    window.clear();
    seen.clear();
    keyboard.strikeWith({place::leftShift, place::leftAlt, place::leftSuper}, place::z);  // where a German has Y
    keyboard.strike(place::grave);
    ASSERT_TRUE(settle());
    EXPECT_THAT(window.presses(), ElementsAre(place::f12));
    EXPECT_EQ(countSeen(16), 1);
    EXPECT_EQ(countSeen(keys::keyGrave), 1);
    EXPECT_TRUE(log.contains(QStringLiteral("[Hotkey] ` goes by its place: no key of this keyboard has it")));
}

TEST_F(LayoutsOnDesktop, HotkeysAndShortcutsWorkInACyrillicLayout) {
    auto poster = desktop::X11KeyPoster::open(loop, posted);
    ASSERT_TRUE(poster);
    useLayout("us,ru");
    keyboard.lockGroup(1);
    ASSERT_TRUE(types(place::a, QStringLiteral("ф")));
    EXPECT_EQ(seen.front().keyCode, keys::keyA);
    window.clear();
    strikeToggle();
    keyboard.strike(place::grave);
    (*poster)->press(keys::keyV, keys::commandFlag);
    ASSERT_TRUE(settle());
    EXPECT_THAT(window.presses(), ElementsAre(place::v, place::f12));
    keyboard.lockGroup(0);
}

TEST_F(LayoutsOnDesktop, HotkeysSurviveTheSwitchBetweenPostedAndStruckKeys) {
    auto poster = desktop::X11KeyPoster::open(loop, posted);
    ASSERT_TRUE(poster);
    constexpr int rounds = 20;
    for (int i = 0; i < rounds; ++i) {
        (*poster)->press(keys::keyBackspace, keys::noModifiers);
        strikeToggle();
        keyboard.strikePosted(place::grave);  // another program's
        eventually([&] { return countSeen(37) > i && countSeen(keys::keyGrave) > i; });
    }
    ASSERT_TRUE(settle());
    EXPECT_EQ(countSeen(37), rounds);
    EXPECT_EQ(countSeen(keys::keyGrave), rounds);
    EXPECT_FALSE(window.got(place::l));
    EXPECT_FALSE(window.got(place::grave));
    EXPECT_EQ(std::ranges::count(window.presses(), place::backspace), rounds);
}

}  // namespace tavrelon::testing
