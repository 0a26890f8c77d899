#include <gmock/gmock.h>

#include <thread>

#include "desktop/hotkeys_fixture.h"
#include "desktop/x11/keys/x11_key_poster.h"

namespace tavrelon::testing {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct TakesChordsTwice : desktop::ShortcutTranslator {
    std::optional<desktop::KeyChord> translate(desktop::KeyChord asked) override { return asked; }
    bool takesChordsTwice() override { return true; }
};

class KeyPosterOnDesktop : public HotkeysOnDesktop {
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

TEST_F(KeyPosterOnDesktop, KeysArriveAsPostedAndAreNotTakenForTheUsers) {
    observe();
    poster->press(keys::keyV, keys::commandFlag);
    poster->press(keys::keyBackspace, keys::noModifiers);
    poster->press(keys::keyA, keys::noModifiers);
    poster->press(keys::keyGrave, keys::noModifiers);  // a hotkey if the user strikes it
    ASSERT_TRUE(settle());
    EXPECT_THAT(window.presses(), ElementsAre(place::v, place::backspace, place::a, place::grave, place::f12));
    EXPECT_EQ(window.stateOf(place::v), control);
    EXPECT_EQ(window.stateOf(place::backspace), 0);
    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(typed, QString());
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
    ASSERT_TRUE(eventually([&] { return window.got(place::x); }));
    EXPECT_EQ(window.stateOf(place::backspace), 0);
    EXPECT_EQ(window.stateOf(place::v), control);
    EXPECT_EQ(window.stateOf(place::escape), 0);
    EXPECT_EQ(window.stateOf(place::x), static_cast<int>(chordState));

    for (const auto code : {place::leftShift, place::leftAlt, place::leftSuper})
        keyboard.release(code);
    EXPECT_TRUE(eventually([&] { return keyboard.downOnPostingDevice().empty(); }));
    EXPECT_THAT(keyboard.down(), IsEmpty());
    poster->press(keys::keyV, keys::commandFlag);
    ASSERT_TRUE(settle());
    EXPECT_EQ(window.stateOf(place::v), control);
    EXPECT_EQ(window.stateOf(place::f12), 0);
}

TEST_F(KeyPosterOnDesktop, OnlyWhatIsStillHeldComesBack) {
    for (const auto code : {place::leftShift, place::leftAlt, place::leftSuper})
        keyboard.press(code);
    {
        const platform::ModifiersAside aside(*poster);
        keyboard.release(place::leftShift);
        keyboard.press(place::leftControl);  // and one more comes along
        poster->press(keys::keyBackspace, keys::noModifiers);
        keyboard.release(place::leftSuper);
    }
    keyboard.strike(place::x);
    keyboard.release(place::leftAlt);
    keyboard.release(place::leftControl);
    ASSERT_TRUE(eventually([&] { return keyboard.downOnPostingDevice().empty(); }));
    ASSERT_TRUE(settle());
    EXPECT_EQ(window.stateOf(place::backspace), 0);
    EXPECT_EQ(window.stateOf(place::x), control | 8);
    EXPECT_EQ(window.stateOf(place::f12), 0);
}

TEST_F(KeyPosterOnDesktop, APressOnItsOwnPutsModifiersAsideForItself) {
    keyboard.press(place::leftControl);
    keyboard.press(place::v);  // the very key that is posted is down, too
    poster->press(keys::keyV, keys::commandFlag | keys::shiftFlag);
    EXPECT_TRUE(eventually([&] { return window.stateOf(place::v) == (control | 1); }));
    keyboard.release(place::v);
    keyboard.strike(place::x);
    keyboard.release(place::leftControl);
    ASSERT_TRUE(eventually([&] { return keyboard.downOnPostingDevice().empty(); }));
    ASSERT_TRUE(settle());
    EXPECT_EQ(window.stateOf(place::x), control);
}

TEST_F(KeyPosterOnDesktop, WhereChordsAreTakenTwiceTheirModifiersAreAState) {
    const auto other = desktop::X11KeyPoster::open(loop, posted, std::make_unique<TakesChordsTwice>()).value();
    other->press(keys::keyV, keys::commandFlag | keys::shiftFlag);
    other->press(keys::keyBackspace, keys::noModifiers);
    ASSERT_TRUE(settle());
    EXPECT_EQ(window.stateOf(place::v), control | 1);
    EXPECT_EQ(window.stateOf(place::backspace), 0) << "nothing stays locked";
    EXPECT_EQ(std::ranges::count(window.strokes(), place::leftControl, &KeyWindow::Stroke::code), 0);
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(KeyPosterOnDesktop, LettingGoAtAnyMomentLeavesNothingStuck) {
    for (int round = 0; round < 50; ++round) {
        keyboard.press(place::leftControl);
        keyboard.press(place::leftShift);
        std::thread user([&] {
            std::this_thread::sleep_for(std::chrono::microseconds(100 * round));
            keyboard.release(place::leftShift);
            keyboard.release(place::leftControl);
        });
        for (int stroke = 0; stroke < 3; ++stroke)
            poster->press(keys::keyV, keys::commandFlag);
        user.join();
        ASSERT_TRUE(eventually([&] { return keyboard.down().empty() && keyboard.downOnPostingDevice().empty(); }))
            << round;
    }
    ASSERT_TRUE(settle());
    EXPECT_EQ(window.stateOf(place::f12), 0);
    const auto& strokes = window.strokes();
    const auto wrong = std::ranges::count_if(strokes, [](const auto& stroke) {
        return stroke.isPress && stroke.code == place::v && stroke.state != control;
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(std::ranges::count(window.presses(), place::v), 150);
}

TEST_F(KeyPosterOnDesktop, WhatAnEarlierRunLeftDownIsLetGoAtTheStart) {
    poster.reset();
    ASSERT_TRUE(runProgram({"xdotool", "keydown", "Shift_L", "keydown", "Control_L"}));
    ASSERT_THAT(keyboard.downOnPostingDevice(), ElementsAre(place::leftControl, place::leftShift));
    poster = desktop::X11KeyPoster::open(loop, posted).value();
    EXPECT_EQ(keyboard.downOnPostingDevice().size(), 2U) << "they may be another's, who is posting a chord";
    poster->letGoOfLeftOverModifiers();
    EXPECT_THAT(keyboard.downOnPostingDevice(), IsEmpty());
}

TEST_F(KeyPosterOnDesktop, AHeldKeyboardIsNoticedAndTheQuestionCostsNoKey) {
    KeyWindow locker;
    window.focus();
    for (int i = 0; i < 200; ++i) {
        keyboard.strike(place::a);
        EXPECT_FALSE(poster->isKeyboardHeld());
    }
    ASSERT_TRUE(settle());
    EXPECT_EQ(std::ranges::count(window.presses(), place::a), 200);
    ASSERT_TRUE(locker.holdKeyboard());
    EXPECT_TRUE(poster->isKeyboardHeld());
    locker.letGoOfKeyboard();
    EXPECT_TRUE(eventually([this] { return !poster->isKeyboardHeld(); }));
}

TEST_F(KeyPosterOnDesktop, CapsLockChangesNoShortcut) {
    keyboard.strike(place::capsLock);
    poster->press(keys::keyV, keys::commandFlag);
    keyboard.strike(place::capsLock);
    ASSERT_TRUE(settle());
    EXPECT_EQ(window.stateOf(place::v) & ~2, control);
    EXPECT_EQ(window.stateOf(place::f12), 0) << "the lock is as the user left it";
}

TEST_F(KeyPosterOnDesktop, StickyModifiersReachNoPostedKeyAndStayLocked) {
    constexpr int shift = 1;
    for (const bool asState : {false, true}) {
        if (asState)
            poster = desktop::X11KeyPoster::open(loop, posted, std::make_unique<TakesChordsTwice>()).value();
        window.clear();
        keyboard.lockModifiers(control);
        keyboard.latchModifiers(shift);
        {
            const platform::ModifiersAside aside(*poster);
            poster->press(keys::keyBackspace, keys::noModifiers);
            poster->press(keys::keyV, keys::commandFlag);
            poster->press(keys::keyA, keys::noModifiers);
        }
        ASSERT_TRUE(settle());
        keyboard.lockModifiers(0);
        EXPECT_EQ(window.stateOf(place::backspace), 0) << "with Control it would take a word";
        EXPECT_EQ(window.stateOf(place::v), control) << asState;
        EXPECT_EQ(window.stateOf(place::a), 0);
        EXPECT_EQ(window.stateOf(place::f12), control) << "as the user left it";
    }
}

}  // namespace tavrelon::testing
