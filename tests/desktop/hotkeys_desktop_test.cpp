#include <gmock/gmock.h>

#include <thread>

#include "desktop/hotkeys_fixture.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(HotkeysOnDesktop, APressIsToldOnceAndTheApplicationGetsItsModifiersAlone) {
    strikeToggle();
    ASSERT_TRUE(settle());
    EXPECT_THAT(told, ElementsAre(toggle));
    EXPECT_THAT(window.presses(), ElementsAre(place::f12));
    std::vector<place::Code> down;
    for (const auto& stroke : window.strokes())
        if (stroke.isPress)
            down.push_back(stroke.code);
        else
            std::erase(down, stroke.code);
    EXPECT_THAT(down, Each(place::f12)) << "every modifier that the application saw go down, it saw go up";

    // Keys that repeat, and what is left of the hotkey when the modifiers go first.
    keyboard.press(place::grave);
    letPass(1s);
    keyboard.release(place::grave);
    for (const auto code : {place::leftShift, place::leftAlt, place::leftSuper, place::l})
        keyboard.press(code);
    for (const auto code : {place::leftShift, place::leftAlt, place::leftSuper})
        keyboard.release(code);
    letPass(1s);
    keyboard.release(place::l);
    ASSERT_TRUE(settle());
    EXPECT_EQ(countTold(grave), 1);
    EXPECT_EQ(countTold(toggle), 2);
    EXPECT_THAT(window.presses(), Each(place::f12));

    // A hotkey that is not wanted any more, but still held.
    onTold = [this] { declare({toggle}); };
    keyboard.press(place::grave);
    letPass(1s);
    keyboard.release(place::grave);
    ASSERT_TRUE(settle());
    EXPECT_THAT(window.presses(), Each(place::f12));
    keyboard.strike(place::grave);
    ASSERT_TRUE(settle());
    EXPECT_TRUE(window.got(place::grave)) << "the next one is the application's";
    EXPECT_EQ(countTold(grave), 2);
}

TEST_F(HotkeysOnDesktop, AnotherKeyStruckWhileAHotkeyIsHeldArrives) {
    const auto modifiers = {place::leftShift, place::leftAlt, place::leftSuper};
    for (const auto code : modifiers)
        keyboard.press(code);
    keyboard.press(place::l);
    ASSERT_TRUE(eventually([this] { return countTold(toggle) == 1; }));
    keyboard.strike(place::x);
    keyboard.release(place::l);
    for (const auto code : modifiers)
        keyboard.release(code);
    ASSERT_TRUE(settle());
    EXPECT_THAT(window.presses(), ElementsAre(place::x, place::f12));
    EXPECT_EQ(window.stateOf(place::x), static_cast<int>(chordState));
}

TEST_F(HotkeysOnDesktop, LocksDoNotHideAHotkey) {
    for (const auto lock : {place::capsLock, place::numLock, place::capsLock, place::numLock}) {
        keyboard.strike(lock);  // the four sets of locks, one after the other
        strikeToggle();
        keyboard.strike(place::grave);
        ASSERT_TRUE(settle());
    }
    EXPECT_THAT(window.presses(), Each(place::f12));
    EXPECT_EQ(countTold(toggle), 4);
    EXPECT_EQ(countTold(grave), 4);
}

TEST_F(HotkeysOnDesktop, ModifiersAloneCountOnlyAsAStrokeOfTheirOwn) {
    const auto hold = [this](auto between) {
        keyboard.press(place::leftControl);
        keyboard.press(place::leftShift);
        between();
        keyboard.release(place::leftShift);
        keyboard.release(place::leftControl);
        ASSERT_TRUE(settle());
    };
    hold([] {});
    EXPECT_EQ(countTold(dictation), 1);
    hold([this] { keyboard.strike(place::v); });
    hold([this] { keyboard.strike(place::leftAlt); });
    hold([] { ASSERT_TRUE(runProgram({"xdotool", "click", "2"})); });
    hold([] { letPass(1200ms); });
    EXPECT_EQ(countTold(dictation), 1) << "a shortcut, a third modifier, a click, a long hold";

    ASSERT_TRUE(runProgram({"setxkbmap", "-layout", "us,ru", "-option", "grp:ctrl_shift_toggle"}));
    letPass(500ms);
    hold([] {});
    hold([] {});
    EXPECT_EQ(countTold(dictation), 1) << "the keyboard's own switch of layouts";
    ASSERT_TRUE(runProgram({"setxkbmap", "-layout", "us", "-option", ""}));
    letPass(500ms);

    const WantedHotkey atOnce{keys::defaults::voiceDictationHotkey, Fires::OnModifiersDown};
    declare({atOnce});
    onTold = [this] { declare({dictation}); };
    hold([&] { EXPECT_TRUE(eventually([&] { return countTold(atOnce) == 1; })) << "before it is let go"; });
    EXPECT_EQ(countTold(dictation), 1) << "the stroke that ended a recording begins none";
    onTold = nullptr;
    hold([] {});
    EXPECT_EQ(countTold(dictation), 2);
}

TEST_F(HotkeysOnDesktop, WhileAnotherProgramHoldsTheKeyboardNothingActsAndNothingIsTold) {
    observe();
    keyboard.strike(place::a);
    ASSERT_TRUE(settle());
    ASSERT_TRUE(window.holdKeyboard());
    strikeToggle();
    keyboard.strike(place::grave);
    keyboard.press(place::leftControl);
    keyboard.strike(place::leftShift);
    keyboard.release(place::leftControl);
    ASSERT_TRUE(settle());
    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(typed, QStringLiteral("a"));
    EXPECT_EQ(left, 1);
    EXPECT_THAT(window.presses(), ElementsAre(place::a, place::f12, place::l, place::grave, place::f12));
    window.letGoOfKeyboard();
    strikeToggle();
    ASSERT_TRUE(settle());
    EXPECT_EQ(countTold(toggle), 1);
    EXPECT_THAT(log.lines(), IsEmpty());

    KeyWindow manager;
    manager.holdCombination(place::k, 4);
    window.focus();
    const keys::HotkeyConfig held{40, keys::controlFlag};
    EXPECT_THAT(hotkeys.heldElsewhere({held, keys::defaults::videoHotkey}), ElementsAre(held));
    declare({{held, Fires::OnPress}});
    EXPECT_THAT(log.lines(), ElementsAre(QStringLiteral("[Hotkey] ⌃K is held by another program")));
}

TEST_F(HotkeysOnDesktop, TypedKeysAreToldFromTheHotkeyOnHoweverLateTheObservationBegins) {
    keyboard.strike(place::q);
    onTold = [this] {
        keyboard.strike(place::a);
        std::this_thread::sleep_for(100ms);  // the field is read meanwhile
        observe();
        onTold = nullptr;
    };
    keyboard.strike(place::grave);
    ASSERT_TRUE(eventually([this] { return countTold(grave) == 1; }));
    keyboard.strike(place::s);
    strikeToggle();
    ASSERT_TRUE(settle());
    EXPECT_EQ(typed, QStringLiteral("as")) << "neither what came before nor the hotkeys";
    observer.stop();
    keyboard.strike(place::z);
    ASSERT_TRUE(settle());
    EXPECT_EQ(typed, QStringLiteral("as"));
    EXPECT_EQ(left, 0);
}

TEST_F(HotkeysOnDesktop, WhatIsTypedIntoAnotherWindowIsNotTold) {
    keyboard.strike(place::grave);
    observe();
    keyboard.strike(place::a);
    ASSERT_TRUE(settle());
    {
        KeyWindow other;  // of another client
        keyboard.strike(place::s);
        EXPECT_TRUE(eventually([&] { return other.got(place::s) && left == 1; }));
    }
    window.focus();
    keyboard.strike(place::x);
    ASSERT_TRUE(settle());
    EXPECT_EQ(typed, QStringLiteral("a")) << "it has ended";
}

TEST_F(HotkeysOnDesktop, LosesNoneOfTenThousandKeysAndKeepsTheirOrder) {
    constexpr std::array letters{place::a, place::s, place::l, place::x, place::c, place::v, place::z};
    constexpr int count = 10'000;
    observe();
    std::vector<place::Code> expected;
    QString expectedText;
    std::thread typist([&] {
        for (int i = 0; i < count; ++i) {
            const auto index = static_cast<std::size_t>(i) % letters.size();
            const bool isHotkey = i % 50 == 49;
            keyboard.strike(isHotkey ? place::grave : letters[index]);
            if (isHotkey)
                continue;
            expected.push_back(letters[index]);
            expectedText += QLatin1Char("aslxcvz"[index]);
        }
    });
    EXPECT_TRUE(eventually([&] { return typed.size() >= count - count / 50 && countTold(grave) >= count / 50; }, 90s));
    typist.join();
    ASSERT_TRUE(settle());
    expected.push_back(place::f12);
    EXPECT_EQ(window.presses(), expected);
    EXPECT_EQ(typed, expectedText);
    EXPECT_EQ(countTold(grave), count / 50);
}

TEST_F(HotkeysOnDesktop, AStopWithinTheHandlerLetsGoOfAllKeys) {
    onTold = [this] { hotkeys.stop(); };
    keyboard.strike(place::grave);
    ASSERT_TRUE(eventually([this] { return !told.empty(); }));
    keyboard.strike(place::grave);
    ASSERT_TRUE(eventually([this] { return window.got(place::grave); }));
    EXPECT_EQ(told.size(), 1U);
}

}  // namespace tavrelon::testing
