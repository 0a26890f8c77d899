#include <gmock/gmock.h>

#include <thread>

#include "desktop/event_tap_fixture.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;
using platform::KeyEvent;
using platform::TapVerdict;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(EventTapOnDesktop, ADroppedKeyLeavesNoTraceAndModifiersComeThrough) {
    strikeToggle();
    ASSERT_TRUE(settle());
    std::vector<std::pair<place::Code, bool>> strokes;
    for (const auto& stroke : window.strokes())
        strokes.emplace_back(stroke.code, stroke.isPress);
    strokes.resize(6);
    EXPECT_THAT(strokes, ElementsAre(std::pair(place::leftShift, true), std::pair(place::leftAlt, true),
                                     std::pair(place::leftSuper, true), std::pair(place::leftSuper, false),
                                     std::pair(place::leftAlt, false), std::pair(place::leftShift, false)));
}

TEST_F(EventTapOnDesktop, AnotherKeyStruckWhileAHotkeyIsHeldArrives) {
    const auto modifiers = {place::leftShift, place::leftAlt, place::leftSuper};
    for (const auto code : modifiers)
        keyboard.press(code);
    keyboard.press(place::l);
    keyboard.press(place::x);
    keyboard.release(place::l);
    keyboard.release(place::x);
    for (const auto code : modifiers)
        keyboard.release(code);
    ASSERT_TRUE(settle());
    EXPECT_THAT(window.presses(), ElementsAre(place::x, place::f12));
    EXPECT_EQ(window.stateOf(place::x), static_cast<int>(chordState));

    // Two hotkeys that overlap are both dropped.
    window.clear();
    tap.setHotkeys({{keys::keyGrave, {}}, {keys::keyA, {}}});
    keyboard.press(place::grave);
    keyboard.press(place::a);
    keyboard.release(place::a);
    keyboard.press(place::a);
    keyboard.release(place::grave);
    keyboard.release(place::a);
    ASSERT_TRUE(settle());
    EXPECT_THAT(window.presses(), ElementsAre(place::f12));
    EXPECT_EQ(countSeen(keys::keyA), 2);
}

TEST_F(EventTapOnDesktop, AHeldHotkeyRepeatsAndIsMatchedAnew) {
    keyboard.press(place::grave);
    ASSERT_TRUE(eventually([this] { return countSeen(keys::keyGrave) >= 4; }));
    keyboard.release(place::grave);
    ASSERT_TRUE(settle());
    EXPECT_THAT(window.presses(), ElementsAre(place::f12));
    EXPECT_FALSE(seen[0].isRepeat);
    EXPECT_TRUE(seen[1].isRepeat && seen[2].isRepeat);
}

TEST_F(EventTapOnDesktop, LocksDoNotHideAHotkey) {
    for (const auto lock : {place::capsLock, place::numLock, place::capsLock, place::numLock}) {
        keyboard.strike(lock);  // the four sets of locks, one after the other
        strikeToggle();
        keyboard.strike(place::grave);
        ASSERT_TRUE(settle());
    }
    EXPECT_THAT(window.presses(), Each(place::f12));
    EXPECT_EQ(countSeen(37), 4);
    EXPECT_EQ(countSeen(keys::keyGrave), 4);
}

TEST_F(EventTapOnDesktop, WhatAnotherClientHoldsIsSeenButNotDropped) {
    ASSERT_TRUE(window.holdKeyboard());
    strikeToggle();
    ASSERT_TRUE(settle());
    EXPECT_EQ(countSeen(37), 1);
    EXPECT_TRUE(window.got(place::l));
    window.letGoOfKeyboard();
    window.clear();
    strikeToggle();
    ASSERT_TRUE(settle());
    EXPECT_EQ(countSeen(37), 2);
    EXPECT_FALSE(window.got(place::l));
    EXPECT_THAT(log.lines(), IsEmpty());

    KeyWindow manager;
    manager.holdCombination(place::l, chordState);
    window.focus();
    tap.setHotkeys({keys::defaults::toggleHotkey, keys::defaults::quickAskHotkey});
    tap.setHotkeys({keys::defaults::toggleHotkey});
    EXPECT_THAT(log.lines(),
                ElementsAre(QStringLiteral("[Hotkey] ⌥⇧⌘L is held by another program and cannot be withheld")));
    strikeToggle();
    ASSERT_TRUE(settle());
    EXPECT_EQ(countSeen(37), 3);
    EXPECT_TRUE(manager.got(place::l)) << "its owner still gets it";
    EXPECT_FALSE(window.got(place::l));
}

TEST_F(EventTapOnDesktop, LosesNoneOfTenThousandKeysAndKeepsTheirOrder) {
    constexpr std::array letters{place::a, place::s, place::l, place::x, place::c, place::v, place::z};
    constexpr int count = 10'000;
    std::vector<place::Code> expected;
    std::thread typist([&] {
        for (int i = 0; i < count; ++i) {
            const auto code = i % 50 == 49 ? place::grave : letters[static_cast<std::size_t>(i) % letters.size()];
            keyboard.strike(code);
            if (code != place::grave)
                expected.push_back(code);
        }
    });
    EXPECT_TRUE(eventually([this] { return seen.size() >= count; }, 60s));
    typist.join();
    ASSERT_TRUE(settle());
    expected.push_back(place::f12);
    EXPECT_EQ(window.presses(), expected);
    EXPECT_EQ(seen.size(), count + 1U);
    EXPECT_EQ(countSeen(keys::keyGrave), count / 50);
    for (int i = 0; i < count; ++i)
        ASSERT_EQ(seen[static_cast<std::size_t>(i)].keyCode == keys::keyGrave, i % 50 == 49) << i;
}

TEST_F(EventTapOnDesktop, AStopWhileAKeyIsFrozenLetsItGo) {
    verdict = [this](const KeyEvent&) {
        tap.stop();
        return TapVerdict::Drop;
    };
    keyboard.strike(place::grave);
    keyboard.strike(place::x);
    ASSERT_TRUE(eventually([this] { return window.got(place::x) && !seen.empty(); }));
    EXPECT_THAT(window.presses(), ElementsAre(place::grave, place::x));
    EXPECT_EQ(seen.size(), 1U);
}

}  // namespace tavrelon::testing
