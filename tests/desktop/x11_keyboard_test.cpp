#include <gmock/gmock.h>

#include "desktop/x11/keys/x11_hotkey_grabs.h"
#include "desktop/x11/keys/x11_modifier_chords.h"
#include "desktop/x11/keys/x11_typed_keys.h"
#include "support/qt_gtest.h"
#include "support/xtest_keyboard.h"

namespace tavrelon::desktop {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace place = testing::place;
using namespace keys;

namespace {

constexpr ModifierMask mod1 = 8;
constexpr ModifierMask mod2 = 16;
constexpr ModifierMask mod4 = 64;
constexpr ModifierMask mod5 = 128;
constexpr VirtualKey keyLeft = 123;

std::shared_ptr<const X11Keyboard> keyboardOf(const char* layouts, const char* options = "") {
    const XkbContext context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    const xkb_rule_names names{"evdev", "pc105", layouts, "", options};
    return std::make_shared<const X11Keyboard>(
        XkbKeymap(xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS)));
}

}  // namespace

TEST(X11Keyboard, NamesKeysByTheirLabelFirst) {
    const auto us = keyboardOf("us");
    EXPECT_EQ(us->virtualKey(place::l, 0), keyL);
    EXPECT_EQ(us->virtualKey(113, 0), keyLeft);
    EXPECT_EQ(us->virtualKey(place::f12, 0), 111);
    EXPECT_EQ(us->virtualKey(104, 0), keyKeypadEnter);
    EXPECT_THAT(us->codesFor(keyGrave), ElementsAre(place::grave));

    const auto german = keyboardOf("de");
    EXPECT_EQ(german->virtualKey(place::y, 0), 6) << "Z is where a US keyboard has Y";
    EXPECT_THAT(german->codesFor(16), ElementsAre(place::z));
    EXPECT_THAT(german->codesFor(keyGrave), ElementsAre(place::grave)) << "no key has the label, so the place counts";
    EXPECT_TRUE(german->goesByPlace(keyGrave));
    EXPECT_FALSE(german->goesByPlace(16));
    EXPECT_EQ(german->virtualKey(255, 0), unnamedKey);
}

TEST(X11Keyboard, OtherLayoutsHelpOutWhereTheOneInForceHasNoLabel) {
    const auto russian = keyboardOf("us,ru");
    EXPECT_EQ(russian->virtualKey(place::l, 1), keyL);
    EXPECT_EQ(russian->codeToPress(keyV, 1), place::v);

    const auto french = keyboardOf("us,fr");
    EXPECT_EQ(french->virtualKey(place::q, 0), 12);
    EXPECT_EQ(french->virtualKey(place::q, 1), keyA);
    EXPECT_THAT(french->codesFor(keyA), ElementsAre(place::q, place::a)) << "either, as the layout in force has it";
    EXPECT_EQ(french->codeToPress(keyA, 0), place::a);
    EXPECT_EQ(french->codeToPress(keyA, 1), place::q);

    const auto onlyRussian = keyboardOf("ru");
    EXPECT_EQ(onlyRussian->codeToPress(keyV, 0), place::v);
    EXPECT_TRUE(onlyRussian->goesByPlace(keyV));
    EXPECT_EQ(onlyRussian->codeToPress(5000, 0), std::nullopt);
}

TEST(X11Keyboard, FindsModifiersInTheMapAndNotByNumber) {
    const auto plain = keyboardOf("us");
    EXPECT_EQ(plain->maskOf(defaults::shiftOptionCommand), shiftMask | mod1 | mod4);
    EXPECT_EQ(plain->numLock(), mod2);
    EXPECT_EQ(plain->flagsOf(shiftMask | mod1 | mod4), defaults::shiftOptionCommand);
    EXPECT_EQ(plain->flagsOf(lockMask | mod2 | mod5), noModifiers);
    EXPECT_EQ(plain->modifierKey(controlFlag), place::leftControl);
    EXPECT_TRUE(plain->flagsHeldBy(place::capsLock).isEmpty());

    const auto swapped = keyboardOf("us", "altwin:swap_alt_win");
    EXPECT_EQ(swapped->flagsHeldBy(place::leftAlt), commandFlag);
    EXPECT_EQ(swapped->flagsHeldBy(place::leftSuper), optionFlag);
}

using platform::WantedHotkey;
using Fires = WantedHotkey::Fires;

TEST(X11GrabSet, ChangesOnlyWhatDiffers) {
    const auto us = keyboardOf("us");
    const ModifierMask chord = shiftMask | mod1 | mod4;
    const GrabSet escape{{place::escape, 0}};
    const auto change = changeOf({{place::l, chord}, {place::escape, 0}}, {{place::a, chord}, {place::escape, 0}});
    EXPECT_THAT(change.added, ElementsAre(KeyGrab{place::a, chord}));
    EXPECT_THAT(change.removed, ElementsAre(KeyGrab{place::l, chord}));
    EXPECT_THAT(withLocks(escape, mod2),
                ElementsAre(KeyGrab{place::escape, 0}, KeyGrab{place::escape, lockMask}, KeyGrab{place::escape, mod2},
                            KeyGrab{place::escape, lockMask | mod2}));
    EXPECT_THAT(grabsFor(defaults::autoReplyHotkey, *us, 0), ElementsAre(KeyGrab{place::a, chord})) << "0 is A";
    EXPECT_THAT(grabsFor(HotkeyConfig{5000, noModifiers}, *us, 0), IsEmpty());
    EXPECT_THAT(grabsFor(HotkeyConfig{56, noModifiers}, *us, 0), IsEmpty()) << "a modifier alone cannot be withheld";
}

TEST(X11GrabSet, ABareKeyMustTypeItsSymbolInTheLayoutInForce) {
    const GrabSet graveKey{{place::grave, 0}};
    EXPECT_EQ(grabsFor(defaults::quickAskHotkey, *keyboardOf("us"), 0), graveKey);
    for (const char* layout : {"no", "tr", "ru", "de"})
        EXPECT_THAT(grabsFor(defaults::quickAskHotkey, *keyboardOf(layout), 0), IsEmpty()) << layout;
    EXPECT_EQ(grabsFor(defaults::quickAskHotkey, *keyboardOf("us,ru"), 0), graveKey);
    EXPECT_THAT(grabsFor(defaults::quickAskHotkey, *keyboardOf("us,ru"), 1), IsEmpty());
    EXPECT_THAT(grabsFor({keyGrave, controlFlag}, *keyboardOf("de"), 0),
                ElementsAre(KeyGrab{place::grave, controlMask}))
        << "with modifiers it types nothing that would be lost";
}

TEST(X11HotkeyGrabs, AHeldHotkeyIsOneStrokeUntilItIsLetGo) {
    X11HotkeyGrabs grabs;
    grabs.setKeyboard(keyboardOf("us"), 0);
    const WantedHotkey toggle{defaults::toggleHotkey};
    grabs.declare({toggle, {defaults::voiceHotkey, Fires::OnModifiersReleased}});
    const KeyGrab stroke{place::l, shiftMask | mod1 | mod4};
    EXPECT_THAT(grabs.grabs(), ElementsAre(stroke));
    EXPECT_EQ(grabs.pressed(stroke, 10, true), std::nullopt) << "it was down before it was wanted";
    EXPECT_EQ(grabs.pressed(stroke, 10, false), toggle);
    EXPECT_EQ(grabs.pressed(stroke, 10, true), std::nullopt);
    grabs.declare({});
    EXPECT_EQ(grabs.grabs().size(), 8U) << "with all and with fewer of its modifiers";
    EXPECT_TRUE(grabs.grabs().contains({place::l, 0}));
    EXPECT_FALSE(grabs.released(place::a, 11));
    EXPECT_TRUE(grabs.released(place::l, 12));
    EXPECT_THAT(grabs.grabs(), IsEmpty());

    grabs.declare({toggle});
    EXPECT_FALSE(grabs.released(place::l, 21)) << "the keyboard is frozen, and the press comes late";
    EXPECT_EQ(grabs.pressed(stroke, 20, false), toggle);
    EXPECT_EQ(grabs.pressed(stroke, 30, false), toggle) << "it was not held";
}

class X11TypedKeysTest : public ::testing::Test {
 public:
    X11TypedKeysTest() { use("us"); }

    void use(const char* layouts) { keys.setKeyboard(keyboardOf(layouts)); }
    DeviceKey key(KeyCode code, KeyState state = {}, DeviceId device = 1, KeyAction action = KeyAction::Press) {
        keys.track({device, code, action});
        return {device, code, action, state, false};
    }
    QString typed(KeyCode code, KeyState state = {}) { return keys.typed(key(code, state)).characters; }

    X11TypedKeys keys;
};

TEST_F(X11TypedKeysTest, ModifiersOfAllKeyboardsAddUpAndMissedReleasesAreForgotten) {
    key(place::leftShift, {}, 1);
    key(place::leftAlt, {}, 1);
    key(place::leftSuper, {}, 2);
    EXPECT_EQ(keys.flagsDown(), defaults::shiftOptionCommand);
    EXPECT_EQ(keys.grabOf(key(place::l, {}, 3)), (KeyGrab{place::l, shiftMask | mod1 | mod4}));
    key(place::leftSuper, {}, 2, KeyAction::Release);
    EXPECT_EQ(keys.flagsDown(), shiftFlag | optionFlag);
    keys.keepOnly(mod1);
    EXPECT_EQ(keys.flagsDown(), optionFlag);
    keys.keepOnly(0);
    EXPECT_EQ(keys.flagsDown(), noModifiers);
    EXPECT_FALSE(keys.isModifier(place::capsLock));
}

TEST_F(X11TypedKeysTest, TextFollowsTheLayoutTheLocksAndDeadKeys) {
    EXPECT_EQ(typed(place::a), QStringLiteral("a"));
    EXPECT_EQ(typed(place::a, {.base = shiftMask}), QStringLiteral("A"));
    EXPECT_EQ(typed(place::a, {.locked = lockMask}), QStringLiteral("A"));
    use("us,ru");
    EXPECT_EQ(typed(place::a, {.lockedGroup = 1}), QStringLiteral("ф"));
    EXPECT_EQ(keys.typed(key(place::a, {.lockedGroup = 1})).keyCode, keyA);
    use("de");
    EXPECT_EQ(typed(place::y), QStringLiteral("z"));
    EXPECT_EQ(typed(21), QString()) << "the acute accent waits for its letter";
    EXPECT_EQ(typed(26), QStringLiteral("é"));
    EXPECT_EQ(typed(26), QStringLiteral("e"));
    EXPECT_EQ(keys.typed(key(place::grave, {.base = mod5})).modifierFlags, noModifiers) << "AltGr types";
}

TEST(ModifierChordsTest, TheLargestSetCountsAtTheEndOfAnUninterruptedStroke) {
    using namespace std::chrono_literals;
    const WantedHotkey voice{defaults::voiceHotkey, Fires::OnModifiersReleased};
    const auto both = defaults::voiceHotkey.modifiers;
    std::chrono::milliseconds now = 1h;
    ModifierChords chords;
    chords.declare({voice});
    const auto change = [&](Modifiers before, Modifiers after, unsigned group = 0) {
        return chords.changed({before, after, group, now});
    };
    const auto press = [&] {
        EXPECT_FALSE(change({}, controlFlag));
        now += 3s;  // one after the other, as slowly as the user likes
        EXPECT_FALSE(change(controlFlag, both));
    };
    const auto release = [&](unsigned group = 0) {
        EXPECT_FALSE(change(both, optionFlag, group));
        return change(optionFlag, {}, group);
    };
    press();
    EXPECT_EQ(release(), voice);
    press();
    chords.interrupt();
    EXPECT_FALSE(release());
    press();
    EXPECT_FALSE(release(1)) << "the layout is another one now";
    press();
    now += 1s;
    EXPECT_FALSE(release());
    press();
    EXPECT_FALSE(change(both, both | shiftFlag));
    EXPECT_FALSE(change(both | shiftFlag, both));
    EXPECT_FALSE(release()) << "a third modifier";
    chords.declare({{defaults::voiceHotkey, Fires::OnModifiersDown}});
    EXPECT_FALSE(change({}, controlFlag));
    EXPECT_TRUE(change(controlFlag, both));
    chords.declare({voice});
    EXPECT_FALSE(release()) << "used up";
    press();
    EXPECT_EQ(release(), voice);
}

}  // namespace tavrelon::desktop
