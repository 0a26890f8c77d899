#include "desktop/x11/keys/x11_key_poster.h"

#include <ranges>
#include <thread>

#include "desktop/x11/keys/x11_keyboard_notices.h"
#include "desktop/x11/windows/x11_composition.h"

namespace tavrelon::desktop {

namespace {

/// Command is Control in shortcuts.
keys::Modifiers onThisDesktop(keys::Modifiers flags) {
    if (!flags.contains(keys::commandFlag))
        return flags;
    return keys::Modifiers{flags.raw & ~keys::commandFlag.raw} | keys::controlFlag;
}

/// The keys to hold for these flags on this desktop.
std::vector<KeyCode> modifierKeys(const X11Keyboard& keyboard, keys::Modifiers flags) {
    std::vector<KeyCode> codes;
    const auto hold = [&](keys::Modifiers flag) {
        if (const auto code = keyboard.modifierKey(flag))
            codes.push_back(*code);
    };
    if (onThisDesktop(flags).contains(keys::controlFlag))
        hold(keys::controlFlag);
    if (flags.contains(keys::optionFlag))
        hold(keys::optionFlag);
    if (flags.contains(keys::shiftFlag))
        hold(keys::shiftFlag);
    return codes;
}

}  // namespace

std::expected<std::unique_ptr<X11KeyPoster>, QString> X11KeyPoster::open(
    async::MainLoop& loop, std::shared_ptr<PostedKeys> posted, std::unique_ptr<ShortcutTranslator> shortcuts) {
    auto xtest = X11XTest::open(loop, posted);
    if (!xtest)
        return std::unexpected(xtest.error());
    auto watch = X11Connection::open();
    if (!watch)
        return std::unexpected(watch.error());
    return std::unique_ptr<X11KeyPoster>(
        new X11KeyPoster(std::move(*xtest), std::move(*watch), std::move(posted), std::move(shortcuts)));
}

void X11KeyPoster::press(keys::VirtualKey key, keys::Modifiers flags) {
    const KeyChord asked{key, flags};
    const auto chord = shortcuts_ ? shortcuts_->translate(asked) : asked;
    if (!chord)
        return;
    const platform::ModifiersAside aside(*this);
    const auto keyboard = xtest_->keyboard();
    if (!keyboard)
        return;
    const auto code = keyboard->codeToPress(chord->key, keyboardGroup(xtest_->connection()));
    if (!code)
        return;
    const auto way = posted_->makeWay({chord->key, onThisDesktop(chord->flags)});
    const auto modifiers = modifierKeys(*keyboard, chord->flags);
    if (modifiers.empty() || !shortcuts_ || !shortcuts_->takesChordsTwice())
        return stroke(*code, modifiers);
    unsigned mask = 0;
    for (const auto modifier : modifiers)
        mask |= keyboard->modifiersOf(modifier);
    strokeLocked(*code, static_cast<ModifierMask>(mask));
}

bool X11KeyPoster::isCompositionOpen() {
    return showsComposition(xtest_->connection().get(), xtest_->connection().root());
}

bool X11KeyPoster::isKeyboardHeld() {
    auto* server = xtest_->connection().get();
    const XPointer<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(server, xcb_get_input_focus(server), nullptr));
    if (!focus || focus->focus <= XCB_INPUT_FOCUS_POINTER_ROOT)
        return false;
    // On the window that has the focus anyway, so that nobody is told of it, and given back in the same breath.
    const auto grab =
        xcb_grab_keyboard(server, 1, focus->focus, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    xcb_ungrab_keyboard(server, XCB_CURRENT_TIME);
    const XPointer<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(server, grab, nullptr));
    return reply && (reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED || reply->status == XCB_GRAB_STATUS_FROZEN);
}

void X11KeyPoster::stroke(KeyCode code, const std::vector<KeyCode>& modifierKeys) {
    // A key that the user holds down would not be pressed again.
    if (keysDown(xtest_->connection()).test(code))
        xtest_->post(code, KeyAction::Release);
    for (const auto modifier : modifierKeys)
        xtest_->post(modifier, KeyAction::Press);
    // As fast fingers would. But not while the user holds modifiers: letting go of
    // the same ones would take ours away before the key.
    if (!modifierKeys.empty() && !modifiers_.isAnyAside()) {
        xtest_->send();
        std::this_thread::sleep_for(chordWait);
    }
    xtest_->post(code, KeyAction::Press);
    xtest_->post(code, KeyAction::Release);
    for (const auto modifier : std::views::reverse(modifierKeys))
        xtest_->post(modifier, KeyAction::Release);
    xtest_->send();
}

/// For a program that runs another's keys by their codes this would be a key without modifiers, so it is not the rule.
void X11KeyPoster::strokeLocked(KeyCode code, ModifierMask modifiers) {
    if (keysDown(xtest_->connection()).test(code))
        xtest_->post(code, KeyAction::Release);
    xtest_->setLocked(modifiers, true);
    xtest_->post(code, KeyAction::Press);
    xtest_->post(code, KeyAction::Release);
    xtest_->setLocked(modifiers, false);
    xtest_->send();
}

void X11KeyPoster::putModifiersAside() {
    ++asideDepth_;
    // Inner calls too: the user may have pressed another one meanwhile.
    if (const auto keyboard = xtest_->keyboard())
        modifiers_.putAside(*keyboard);
}

void X11KeyPoster::giveModifiersBack() {
    if (--asideDepth_ == 0)
        modifiers_.giveBack();
}

}  // namespace tavrelon::desktop
