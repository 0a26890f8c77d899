#include "desktop/x11/x11_event_tap_session.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <utility>

#include "desktop/x11/x11_keyboard_notices.h"
#include "keys/key_names.h"

namespace tavrelon::desktop {

using platform::TapVerdict;

namespace {

KeyState stateOf(const xcb_input_key_press_event_t& event) {
    return {static_cast<ModifierMask>(event.mods.base),
            static_cast<ModifierMask>(event.mods.latched),
            static_cast<ModifierMask>(event.mods.locked),
            event.group.base,
            event.group.latched,
            event.group.locked};
}

QString nameOf(const keys::HotkeyConfig& hotkey) {
    const auto modifiers = hotkey.modifiers & keys::relevantModifierMask;
    return (modifiers.isEmpty() ? QString() : keys::displayName(0, modifiers)) + keys::keyDisplayName(hotkey.keyCode);
}

}  // namespace

std::expected<std::unique_ptr<X11TapSession>, QString> X11TapSession::open(async::MainLoop& clock,
                                                                           X11Connection& connection,
                                                                           std::shared_ptr<TapDelivery> delivery,
                                                                           std::shared_ptr<PostedKeys> posted,
                                                                           platform::Log& log) {
    auto devices = keyboardDevices(connection);
    std::shared_ptr<const X11Keyboard> keyboard = X11Keyboard::fromServer(connection);
    if (!devices || !keyboard)
        return std::unexpected(QStringLiteral("The X server gives no keyboard."));
    return std::unique_ptr<X11TapSession>(new X11TapSession(clock, connection, std::move(*devices), std::move(keyboard),
                                                            std::move(delivery), std::move(posted), log));
}

X11TapSession::X11TapSession(async::MainLoop& clock, X11Connection& connection, KeyboardDevices devices,
                             std::shared_ptr<const X11Keyboard> keyboard, std::shared_ptr<TapDelivery> delivery,
                             std::shared_ptr<PostedKeys> posted, platform::Log& log)
    : clock_(clock),
      connection_(connection),
      devices_(std::move(devices)),
      delivery_(std::move(delivery)),
      posted_(std::move(posted)),
      log_(log),
      window_(connection, devices_.master) {
    observer_.setKeyboard(std::move(keyboard));
    watchKeyboardMap(connection);
    findDevices();
}

X11TapSession::~X11TapSession() {
    // Without a held key, too: one may have stopped that we have not read yet.
    if (!held_ || held_->offer->withdraw() != TapVerdict::Drop)
        pass();
    xcb_input_xi_ungrab_device(connection_.get(), XCB_CURRENT_TIME, devices_.master);
}

void X11TapSession::findDevices() {
    if (auto devices = keyboardDevices(connection_))
        devices_ = std::move(*devices);
    watchKeys(connection_, devices_);
    for (const auto device : devices_.physical)
        observer_.setKeysDown(device, keysDown(connection_, device));
}

void X11TapSession::setHotkeys(std::vector<keys::HotkeyConfig> hotkeys) {
    observer_.setHotkeys(std::move(hotkeys));
    window_.setGrabs(observer_.grabs(), observer_.keyboard().numLock());
    reportConflicts();
}

void X11TapSession::readKeyboard() {
    std::shared_ptr<const X11Keyboard> keyboard = X11Keyboard::fromServer(connection_);
    if (!keyboard)
        return;
    const auto before = observer_.grabs();
    observer_.setKeyboard(std::move(keyboard));
    window_.setGrabs(observer_.grabs(), observer_.keyboard().numLock());
    if (before != observer_.grabs())
        reportConflicts();
}

void X11TapSession::reportConflicts() {
    const auto elsewhere = window_.heldElsewhere(observer_.grabs());
    std::set<QString> lines;
    for (const auto& hotkey : observer_.hotkeys()) {
        const auto grabs = grabsFor(hotkey, observer_.keyboard());
        const auto isTaken = [&](const KeyGrab& key) {
            return elsewhere.contains(key) || window_.refused().contains(key);
        };
        if (grabs.empty())
            lines.insert(QStringLiteral("[Hotkey] %1 is on no key of this keyboard").arg(nameOf(hotkey)));
        else if (std::ranges::any_of(grabs, isTaken))
            lines.insert(
                QStringLiteral("[Hotkey] %1 is held by another program and cannot be withheld").arg(nameOf(hotkey)));
        else if (observer_.keyboard().goesByPlace(hotkey.keyCode))
            lines.insert(
                QStringLiteral("[Hotkey] %1 goes by its place: no key of this keyboard has it").arg(nameOf(hotkey)));
    }
    for (const auto& line : lines)
        if (!reported_.contains(line))
            log_.line(line);
    reported_ = std::move(lines);
}

void X11TapSession::work() {
    // Sending, too, reads what has arrived, and no poll announces that any more: so a last look after the last flush.
    XPointer<xcb_generic_event_t> event(xcb_poll_for_event(connection_.get()));
    do {
        drain(std::move(event));
        decide();
        expire();
        if (std::exchange(focusMoved_, false))
            window_.followFocus();
        if (std::exchange(devicesChanged_, false))
            findDevices();
        if (std::exchange(keyboardChanged_, false))
            readKeyboard();
        connection_.flush();
        event.reset(xcb_poll_for_queued_event(connection_.get()));
    } while (event);
}

void X11TapSession::drain(XPointer<xcb_generic_event_t> event) {
    for (; event; event.reset(xcb_poll_for_event(connection_.get())))
        handle(*event);
}

void X11TapSession::expire() {
    const auto now = clock_.now();
    const auto deadline = sequence_.deadline();
    if (!deadline || now < *deadline)
        return;
    // On a busy machine the key may still be on its way; once the server has answered, it would be here.
    connection_.sync();
    drain(XPointer<xcb_generic_event_t>(xcb_poll_for_event(connection_.get())));
    sequence_.expire(now);
    sendReady();
}

std::optional<async::Instant> X11TapSession::deadline() const {
    return held_ ? held_->deadline : sequence_.deadline();
}

void X11TapSession::handle(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7F;
    focusMoved_ |= window_.concerns(event);
    if (type == connection_.firstXkbEvent())
        keyboardChanged_ |= isKeyboardMapNotice(event);
    if (type != XCB_GE_GENERIC)
        return;
    const auto& input = reinterpret_cast<const xcb_input_key_press_event_t&>(event);
    if (input.extension != connection_.inputOpcode())
        return;
    if (input.event_type == XCB_INPUT_HIERARCHY)
        devicesChanged_ = true;
    if (input.event_type != XCB_INPUT_KEY_PRESS && input.event_type != XCB_INPUT_KEY_RELEASE)
        return;
    const auto code = static_cast<KeyCode>(input.detail);
    const bool isRepeat = (input.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0;
    const auto action = input.event_type == XCB_INPUT_KEY_PRESS ? KeyAction::Press : KeyAction::Release;
    if (input.deviceid != devices_.master)
        seen({input.deviceid, code, action, stateOf(input), isRepeat}, input.time);
    else if (action == KeyAction::Press)
        stoppedPress({input.time, code}, isRepeat ? KeySequence::Origin::Repeated : KeySequence::Origin::Struck);
    else
        stoppedRelease(code);
}

void X11TapSession::seen(const DeviceKey& key, std::uint32_t time) {
    const auto now = clock_.now();
    if (key.device == devices_.posted && posted_->take(key.code, key.action, now))
        return;
    if (auto observation = observer_.observe(key)) {
        using enum KeySequence::Expectation;
        sequence_.see({time, key.code}, std::move(observation->event), observation->isHotkey ? StopsAtOurGrab : Passes,
                      now);
        sendReady();
    }
}

void X11TapSession::sendReady() {
    for (auto& event : sequence_.takeReady())
        delivery_->send(std::move(event));
}

void X11TapSession::stoppedPress(const KeySequence::Stamp& stamp, KeySequence::Origin origin) {
    if (!grabKey_)
        grabKey_ = stamp.code;
    auto stopped = sequence_.stopped(stamp, origin);
    if (!stopped) {
        // Not a hotkey: another key struck while one is held down, or one that we posted.
        pass();
        return;
    }
    for (auto& earlier : stopped->before)
        delivery_->send(std::move(earlier));
    if (unanswered_ && !unanswered_->finished()) {
        // The main thread still hangs in an earlier key; to wait again would make typing crawl.
        log_.line(QStringLiteral("[Hotkey] A key was passed on: the application does not answer"));
        pass();
        sendReady();
        return;
    }
    sequence_.freeze();
    held_ = HeldKey{delivery_->offer(std::move(stopped->event)), clock_.now() + verdictLimit, stamp.code};
    sendReady();
}

void X11TapSession::stoppedRelease(KeyCode code) {
    if (dropped_.erase(code) == 0) {
        pass();
    } else if (grabKey_ == code) {
        // The server itself ends the grab here. An answer would meet the next one, if that has begun already.
        grabKey_.reset();
        dropped_.clear();
    } else {
        allow(XCB_INPUT_EVENT_MODE_SYNC_DEVICE);
    }
}

std::optional<TapVerdict> X11TapSession::verdict() {
    if (const auto verdict = held_->offer->verdict())
        return verdict;
    if (clock_.now() < held_->deadline)
        return std::nullopt;
    if (const auto verdict = held_->offer->withdraw())
        return verdict;
    log_.line(QStringLiteral("[Hotkey] A key was passed on: nobody answered within 300 ms"));
    unanswered_ = held_->offer;
    return TapVerdict::Pass;
}

void X11TapSession::decide() {
    if (!held_)
        return;
    const auto verdict = this->verdict();
    if (!verdict)
        return;
    const auto code = held_->code;
    held_.reset();
    if (*verdict == TapVerdict::Drop)
        drop(code);
    else
        pass();
    sequence_.thaw(clock_.now());
}

void X11TapSession::drop(KeyCode code) {
    dropped_.insert(code);
    // The next key stops here too: a repeat of this one, its release, or another key, which then ends the grab.
    allow(XCB_INPUT_EVENT_MODE_SYNC_DEVICE);
}

void X11TapSession::pass() {
    grabKey_.reset();
    dropped_.clear();
    allow(XCB_INPUT_EVENT_MODE_REPLAY_DEVICE);
}

void X11TapSession::allow(std::uint8_t mode) {
    xcb_input_xi_allow_events(connection_.get(), XCB_CURRENT_TIME, devices_.master, mode, 0, XCB_NONE);
    connection_.flush();
}

}  // namespace tavrelon::desktop
