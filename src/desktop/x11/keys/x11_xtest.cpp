#include "desktop/x11/keys/x11_xtest.h"

#include <xcb/xtest.h>

// The C header has a field named like a C++ keyword.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

#include "desktop/x11/keys/x11_keyboard_notices.h"

namespace tavrelon::desktop {

std::expected<std::unique_ptr<X11XTest>, QString> X11XTest::open(async::MainLoop& loop,
                                                                 std::shared_ptr<PostedKeys> posted) {
    auto connection = X11Connection::open();
    if (!connection)
        return std::unexpected(connection.error());
    const auto* extension = xcb_get_extension_data((*connection)->get(), &xcb_test_id);
    if (!extension || !extension->present)
        return std::unexpected(QStringLiteral("The X server lacks the XTEST extension."));
    watchKeyboardMap(**connection);
    return std::unique_ptr<X11XTest>(new X11XTest(loop, std::move(*connection), std::move(posted)));
}

void X11XTest::post(KeyCode code, KeyAction action) {
    posted_->expect(code, action, loop_.now());
    const std::uint8_t type = action == KeyAction::Press ? XCB_KEY_PRESS : XCB_KEY_RELEASE;
    xcb_test_fake_input(connection_->get(), type, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

void X11XTest::setLocked(ModifierMask modifiers, bool locked) {
    xcb_xkb_latch_lock_state(connection_->get(), XCB_XKB_ID_USE_CORE_KBD, modifiers, locked ? modifiers : 0, 0, 0, 0, 0,
                             0);
}

void X11XTest::unlatch(ModifierMask modifiers) {
    xcb_xkb_latch_lock_state(connection_->get(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 0, 0, modifiers, 0, 0);
}

std::shared_ptr<const X11Keyboard> X11XTest::keyboard() {
    // The notice of any change so far is there once the server has answered.
    connection_->sync();
    while (const XPointer<xcb_generic_event_t> event{xcb_poll_for_event(connection_->get())})
        if ((event->response_type & 0x7F) == connection_->firstXkbEvent() && isKeyboardMapNotice(*event))
            keyboard_.reset();
    if (!keyboard_)
        keyboard_ = X11Keyboard::fromServer(*connection_);
    return keyboard_;
}

}  // namespace tavrelon::desktop
