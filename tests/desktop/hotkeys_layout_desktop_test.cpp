#include <gmock/gmock.h>

#include "desktop/hotkeys_fixture.h"
#include "desktop/x11/keys/x11_key_poster.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

using ::testing::ElementsAre;

class LayoutsOnDesktop : public HotkeysOnDesktop {
 public:
    ~LayoutsOnDesktop() override {
        keyboard.lockGroup(0);
        useLayout("us");
    }

    void useLayout(const char* layouts) { ASSERT_TRUE(runProgram({"setxkbmap", "-layout", layouts})); }

    /// Strikes a key until it is read with the wanted text: a new map is followed within moments.
    [[nodiscard]] bool types(place::Code code, const QString& text) {
        observe();
        const bool isSo = eventually([&] {
            typed.clear();
            keyboard.strike(code);
            return settle() && typed == text;
        });
        observer.stop();
        window.clear();
        return isSo;
    }
};

TEST_F(LayoutsOnDesktop, TheBareGraveAccentIsTakenOnlyWhereThatKeyTypesIt) {
    const struct {
        const char* layout;
        place::Code probe;
        const char* probeText;
    } layouts[] = {{"no", 48, "æ"}, {"tr", 47, "ş"}, {"ru", place::a, "ф"}, {"de", place::y, "z"}};
    for (const auto& each : layouts) {
        SCOPED_TRACE(each.layout);
        useLayout(each.layout);
        ASSERT_TRUE(types(each.probe, QString::fromUtf8(each.probeText)));
        keyboard.strike(place::grave);
        ASSERT_TRUE(settle());
        EXPECT_THAT(window.presses(), ElementsAre(place::grave, place::f12));
        EXPECT_EQ(countTold(grave), 0);
    }
    useLayout("us,ru");
    ASSERT_TRUE(types(place::a, QStringLiteral("a")));
    keyboard.strike(place::grave);
    ASSERT_TRUE(settle());
    EXPECT_EQ(countTold(grave), 1);
    keyboard.lockGroup(1);
    ASSERT_TRUE(types(place::a, QStringLiteral("ф")));
    keyboard.strike(place::grave);
    ASSERT_TRUE(settle());
    EXPECT_THAT(window.presses(), ElementsAre(place::grave, place::f12)) << "ё";
    EXPECT_EQ(countTold(grave), 1);
}

TEST_F(LayoutsOnDesktop, HotkeysAndShortcutsGoByTheLabelThatTheUserSees) {
    useLayout("de");
    const WantedHotkey y{{16, chord}, Fires::OnPress};
    declare({y});
    ASSERT_TRUE(types(place::y, QStringLiteral("z")));
    keyboard.strikeWith({place::leftShift, place::leftAlt, place::leftSuper}, place::z);  // where a German has Y
    ASSERT_TRUE(settle());
    EXPECT_THAT(window.presses(), ElementsAre(place::f12));
    EXPECT_EQ(countTold(y), 1);

    auto poster = desktop::X11KeyPoster::open(loop, posted);
    ASSERT_TRUE(poster);
    useLayout("us,ru");
    keyboard.lockGroup(1);
    declare({toggle});
    ASSERT_TRUE(types(place::a, QStringLiteral("ф")));
    strikeToggle();
    (*poster)->press(keys::keyV, keys::commandFlag);
    ASSERT_TRUE(settle());
    EXPECT_THAT(window.presses(), ElementsAre(place::v, place::f12));
    EXPECT_EQ(countTold(toggle), 1);
}

TEST_F(LayoutsOnDesktop, HotkeysSurviveTheSwitchBetweenPostedAndStruckKeys) {
    auto poster = desktop::X11KeyPoster::open(loop, posted);
    ASSERT_TRUE(poster);
    constexpr int rounds = 20;
    for (int i = 0; i < rounds; ++i) {
        (*poster)->press(keys::keyBackspace, keys::noModifiers);
        strikeToggle();
        keyboard.strikePosted(place::grave);  // another program's
        ASSERT_TRUE(eventually([&] { return countTold(toggle) > i && countTold(grave) > i; })) << i;
    }
    ASSERT_TRUE(settle());
    EXPECT_EQ(countTold(toggle), rounds);
    EXPECT_EQ(countTold(grave), rounds);
    EXPECT_FALSE(window.got(place::l));
    EXPECT_FALSE(window.got(place::grave));
    EXPECT_EQ(std::ranges::count(window.presses(), place::backspace), rounds);
}

}  // namespace tavrelon::testing
