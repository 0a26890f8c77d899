#include <gmock/gmock.h>

#include "desktop/x11/x11_event_tap_observer.h"
#include "support/qt_gtest.h"
#include "support/xtest_keyboard.h"

namespace tavrelon::desktop {

using platform::KeyEvent;
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

TEST(X11GrabSet, ChangesOnlyWhatDiffers) {
    const auto us = keyboardOf("us");
    const auto before = grabsFor({defaults::toggleHotkey, defaults::cancelHotkey}, *us);
    const auto after = grabsFor({defaults::autoReplyHotkey, defaults::cancelHotkey}, *us);
    const auto change = changeOf(before, after);
    const ModifierMask chord = shiftMask | mod1 | mod4;
    EXPECT_THAT(change.added, ElementsAre(KeyGrab{place::a, chord})) << "code 0 is the key A";
    EXPECT_THAT(change.removed, ElementsAre(KeyGrab{place::l, chord}));
    EXPECT_THAT(withLocks({{place::escape, 0}}, mod2),
                ElementsAre(KeyGrab{place::escape, 0}, KeyGrab{place::escape, lockMask}, KeyGrab{place::escape, mod2},
                            KeyGrab{place::escape, lockMask | mod2}));
    EXPECT_THAT(grabsFor(HotkeyConfig{5000, noModifiers}, *us), IsEmpty());
    EXPECT_THAT(grabsFor(HotkeyConfig{56, noModifiers}, *us), IsEmpty()) << "a modifier alone cannot be withheld";
}

class X11KeyObserverTest : public ::testing::Test {
 public:
    X11KeyObserverTest() { use("us"); }

    void use(const char* layouts) {
        observer.setKeyboard(keyboardOf(layouts));
        observer.setHotkeys({defaults::toggleHotkey, defaults::quickAskHotkey});
    }
    std::optional<X11KeyObserver::Observation> key(KeyCode code, KeyAction action = KeyAction::Press,
                                                   KeyState state = {}, DeviceId device = 1) {
        return observer.observe({device, code, action, state, false});
    }
    QString typed(KeyCode code, KeyState state = {}) { return key(code, KeyAction::Press, state)->event.characters; }

    X11KeyObserver observer;
};

TEST_F(X11KeyObserverTest, ModifiersAreToldWithTheFlagsAfterTheChange) {
    const auto shift = key(place::leftShift);
    ASSERT_TRUE(shift);
    EXPECT_EQ(shift->event.type, KeyEvent::Type::FlagsChanged);
    EXPECT_EQ(shift->event.modifierFlags, shiftFlag);
    EXPECT_EQ(key(place::leftControl, KeyAction::Press, {.base = shiftMask})->event.modifierFlags,
              shiftFlag | controlFlag);
    const KeyState both{.base = shiftMask | controlMask};
    EXPECT_EQ(key(place::leftShift, KeyAction::Release, both)->event.modifierFlags, controlFlag);
    EXPECT_FALSE(key(place::capsLock));
    EXPECT_FALSE(key(place::a, KeyAction::Release));
}

TEST_F(X11KeyObserverTest, ModifiersOfAllKeyboardsAddUpAndMissedReleasesAreForgotten) {
    key(place::leftShift, KeyAction::Press, {}, 1);
    key(place::leftAlt, KeyAction::Press, {.base = shiftMask}, 1);
    key(place::leftSuper, KeyAction::Press, {}, 2);
    const auto hotkey = key(place::l, KeyAction::Press, {}, 3);
    EXPECT_TRUE(hotkey->isHotkey);
    EXPECT_EQ(hotkey->event.modifierFlags, defaults::shiftOptionCommand);

    // Both keyboards report that nothing is down any more.
    key(place::x, KeyAction::Press, {}, 1);
    EXPECT_EQ(key(place::x, KeyAction::Press, {}, 2)->event.modifierFlags, noModifiers);
}

TEST_F(X11KeyObserverTest, AltGrMakesAnotherKeyOfAHotkeysKey) {
    use("de");
    const auto key = this->key(place::grave, KeyAction::Press, {.base = mod5});
    EXPECT_FALSE(key->isHotkey);
    EXPECT_EQ(key->event.keyCode, unnamedKey) << "the plain key is a hotkey, this one types a letter";
}

TEST_F(X11KeyObserverTest, TextFollowsTheLayoutTheLocksAndDeadKeys) {
    EXPECT_EQ(typed(place::a), QStringLiteral("a"));
    EXPECT_EQ(typed(place::a, {.base = shiftMask}), QStringLiteral("A"));
    EXPECT_EQ(typed(place::a, {.locked = lockMask}), QStringLiteral("A"));
    use("us,ru");
    EXPECT_EQ(typed(place::a, {.lockedGroup = 1}), QStringLiteral("ф"));
    EXPECT_EQ(key(place::a, KeyAction::Press, {.lockedGroup = 1})->event.keyCode, keyA);
    EXPECT_EQ(key(place::l, KeyAction::Press, {.base = shiftMask | mod1 | mod4, .lockedGroup = 1})->isHotkey, true);
    use("de");
    EXPECT_EQ(typed(place::y), QStringLiteral("z"));
    EXPECT_EQ(typed(21), QString()) << "the acute accent waits for its letter";
    EXPECT_EQ(typed(26), QStringLiteral("é"));
    EXPECT_EQ(typed(26), QStringLiteral("e"));
}

}  // namespace tavrelon::desktop
