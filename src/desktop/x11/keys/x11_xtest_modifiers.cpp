#include "desktop/x11/keys/x11_xtest_modifiers.h"

#include <poll.h>
#include <xcb/xinput.h>

#include <array>
#include <utility>

#include "desktop/x11/keys/x11_keyboard_notices.h"

namespace tavrelon::desktop {

namespace {

template <typename Visit>
void forEachKey(const KeySet& keys, Visit visit) {
    for (std::size_t code = 0; code < keys.size(); ++code)
        if (keys.test(code))
            visit(static_cast<KeyCode>(code));
}

}  // namespace

X11HeldModifiers::X11HeldModifiers(X11XTest& xtest, std::unique_ptr<X11Connection> watch)
    : xtest_(xtest), watchConnection_(std::move(watch)) {
    devices_ = keyboardDevices(*watchConnection_).value_or(KeyboardDevices());
    watchDevices(*watchConnection_);
    watchConnection_->sync();
    thread_ = std::thread([this] { this->watch(); });
}

X11HeldModifiers::~X11HeldModifiers() {
    {
        const std::lock_guard lock(mutex_);
        stop_ = true;
    }
    letGo();
    wake_.signal();
    watchConnection_->breakOff();
    thread_.join();
}

void X11HeldModifiers::letGo() {
    const std::lock_guard lock(mutex_);
    releaseRestored();
    xtest_.send();
}

void X11HeldModifiers::releaseRestored() {
    forEachKey(restored_, [this](KeyCode code) { xtest_.post(code, KeyAction::Release); });
    restored_.reset();
    watchKeys(*watchConnection_, devices_, Watch::Off);
}

KeySet X11HeldModifiers::physicallyDown(X11Connection& connection) {
    KeySet down;
    for (const auto device : devices_.physical)
        down |= keysDown(connection, device);
    return down;
}

void X11HeldModifiers::releaseLeftOver() {
    const auto keyboard = xtest_.keyboard();
    const std::lock_guard lock(mutex_);
    forEachKey(keysDown(xtest_.connection(), devices_.posted), [&](KeyCode code) {
        if (keyboard && keyboard->modifiersOf(code) != 0)
            xtest_.post(code, KeyAction::Release);
    });
    xtest_.send();
}

void X11HeldModifiers::putAside(const X11Keyboard& keyboard) {
    const std::lock_guard lock(mutex_);
    const auto down = keysDown(xtest_.connection());
    releaseRestored();
    forEachKey(down, [&](KeyCode code) {
        if ((keyboard.modifiersOf(code) & ~unsigned{keyboard.locks()}) == 0)
            return;
        xtest_.post(code, KeyAction::Release);
        aside_.set(code);
    });
    const auto sticky = stickyModifiers(xtest_.connection());
    if (const auto locked = static_cast<ModifierMask>(sticky.locked & ~unsigned{keyboard.locks()})) {
        xtest_.setLocked(locked, false);
        lockedAside_ |= locked;
    }
    if (sticky.latched != 0)
        xtest_.unlatch(sticky.latched);
    xtest_.send();
}

void X11HeldModifiers::giveBack() {
    const std::lock_guard lock(mutex_);
    // A release from here on finds the key among the restored ones, because the watching thread waits for its turn.
    if (aside_.any()) {
        watchKeys(*watchConnection_, devices_, Watch::On);
        watchConnection_->sync();
    }
    const auto down = aside_.any() ? physicallyDown(xtest_.connection()) : KeySet();
    restored_ |= aside_ & down;
    aside_.reset();
    forEachKey(restored_, [this](KeyCode code) { xtest_.post(code, KeyAction::Press); });
    if (const auto locked = std::exchange(lockedAside_, ModifierMask{0}))
        xtest_.setLocked(locked, true);
    xtest_.send();
    wake_.signal();  // the questions above may have read a release, which no poll announces any more
}

void X11HeldModifiers::watch() {
    for (;;) {
        while (const XPointer<xcb_generic_event_t> event{xcb_poll_for_event(watchConnection_->get())})
            handle(*event);
        {
            const std::lock_guard lock(mutex_);
            if (stop_ || watchConnection_->isBroken())
                return;
        }
        std::array<pollfd, 2> sources{
            {{xcb_get_file_descriptor(watchConnection_->get()), POLLIN, 0}, {wake_.descriptor(), POLLIN, 0}}};
        ::poll(sources.data(), sources.size(), -1);
        wake_.clear();
    }
}

void X11HeldModifiers::handle(const xcb_generic_event_t& event) {
    const auto& input = reinterpret_cast<const xcb_input_key_press_event_t&>(event);
    if ((event.response_type & 0x7F) != XCB_GE_GENERIC || input.extension != watchConnection_->inputOpcode())
        return;
    if (input.event_type == XCB_INPUT_KEY_RELEASE && input.deviceid != devices_.posted)
        released(static_cast<KeyCode>(input.detail));
    if (input.event_type != XCB_INPUT_HIERARCHY)
        return;
    if (auto devices = keyboardDevices(*watchConnection_)) {
        const std::lock_guard lock(mutex_);
        devices_ = std::move(*devices);
        watchKeys(*watchConnection_, devices_, restored_.any() ? Watch::On : Watch::Off);
    }
}

void X11HeldModifiers::released(KeyCode code) {
    const std::lock_guard lock(mutex_);
    if (!restored_.test(code) || physicallyDown(*watchConnection_).test(code))
        return;
    restored_.reset(code);
    xtest_.post(code, KeyAction::Release);
    xtest_.send();
    if (restored_.none())
        watchKeys(*watchConnection_, devices_, Watch::Off);
}

}  // namespace tavrelon::desktop
