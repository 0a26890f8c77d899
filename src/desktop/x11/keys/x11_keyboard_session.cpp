#include "desktop/x11/keys/x11_keyboard_session.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <utility>

#include "keys/key_names.h"

namespace tavrelon::desktop {

using platform::WantedHotkey;

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

std::expected<std::unique_ptr<X11KeyboardSession>, QString> X11KeyboardSession::open(
    X11Connection& connection, std::shared_ptr<X11KeyDelivery> delivery, std::shared_ptr<PostedKeys> posted,
    async::MainLoop& clock, platform::Log& log) {
    auto devices = keyboardDevices(connection);
    auto ungrabbed = X11UngrabbedKeys::open();
    if (!ungrabbed)
        return std::unexpected(ungrabbed.error());
    if (!devices)
        return std::unexpected(QStringLiteral("The X server gives no keyboard."));
    std::unique_ptr<X11KeyboardSession> session(new X11KeyboardSession(
        connection, *std::move(devices), *std::move(ungrabbed), std::move(delivery), std::move(posted), clock, log));
    if (!session->readKeyboard())
        return std::unexpected(QStringLiteral("The X server gives no keyboard map."));
    watchKeyboardMap(connection);
    watchKeyboardState(connection);
    watchDevices(connection);
    session->findDevices();
    return session;
}

X11KeyboardSession::X11KeyboardSession(X11Connection& connection, KeyboardDevices devices,
                                       std::unique_ptr<X11UngrabbedKeys> ungrabbed,
                                       std::shared_ptr<X11KeyDelivery> delivery, std::shared_ptr<PostedKeys> posted,
                                       async::MainLoop& clock, platform::Log& log)
    : connection_(connection),
      devices_(std::move(devices)),
      ungrabbed_(std::move(ungrabbed)),
      delivery_(std::move(delivery)),
      posted_(std::move(posted)),
      clock_(clock),
      log_(log),
      window_(connection, devices_.master) {}

void X11KeyboardSession::findDevices() {
    if (auto devices = keyboardDevices(connection_))
        devices_ = std::move(*devices);
    watchKeys(connection_, devices_, watching_ ? Watch::On : Watch::Off);
    for (const auto device : devices_.physical)
        keys_.setKeysDown(device, keysDown(connection_, device));
    if (grabs_.releasedAll())  // a keyboard that is gone tells of no release
        applyGrabs();
}

bool X11KeyboardSession::readKeyboard() {
    std::shared_ptr<const X11Keyboard> keyboard = X11Keyboard::fromServer(connection_);
    if (!keyboard)
        return false;
    keys_.setKeyboard(keyboard);
    grabs_.setKeyboard(std::move(keyboard), keyboardGroup(connection_));
    return true;
}

void X11KeyboardSession::declare(const std::vector<WantedHotkey>& wanted) {
    chords_.declare(wanted);
    grabs_.declare(wanted);
    applyGrabs();
    watchAsNeeded();
    reportConflicts();
    connection_.sync();
}

void X11KeyboardSession::applyGrabs() {
    window_.setGrabs(grabs_.grabs(), grabs_.keyboard().numLock());
}

void X11KeyboardSession::reportConflicts() {
    const auto report = [this](const QString& line) {
        if (reported_.insert(line).second)
            log_.line(line);
    };
    for (const auto& hotkey : grabs_.wanted()) {
        if (hotkey.fires != WantedHotkey::Fires::OnPress)
            continue;
        GrabSet fresh;
        const auto grabs = grabs_.grabsOf(hotkey);
        std::ranges::copy_if(grabs, std::inserter(fresh, fresh.end()),
                             [this](const KeyGrab& key) { return probed_.insert(key).second; });
        if (grabs.empty())
            report(QStringLiteral("[Hotkey] %1 is on no key of this keyboard").arg(nameOf(hotkey.keys)));
        else if (!heldElsewhere(connection_, fresh).empty() ||
                 std::ranges::any_of(fresh, [this](const KeyGrab& key) { return window_.refused().contains(key); }))
            report(QStringLiteral("[Hotkey] %1 is held by another program").arg(nameOf(hotkey.keys)));
        else if (grabs_.keyboard().goesByPlace(hotkey.keys.keyCode))
            report(QStringLiteral("[Hotkey] %1 goes by its place: no key of this keyboard has it")
                       .arg(nameOf(hotkey.keys)));
    }
}

void X11KeyboardSession::work() {
    // Sending, too, reads what has arrived, and no poll announces that any more: so a last look after the last flush.
    XPointer<xcb_generic_event_t> event(xcb_poll_for_event(connection_.get()));
    do {
        for (; event; event.reset(xcb_poll_for_event(connection_.get())))
            handle(*event);
        settle();
        ungrabbed_->drain();
        connection_.flush();
        event.reset(xcb_poll_for_queued_event(connection_.get()));
    } while (event);
}

/// What a burst of notices has made necessary, once.
void X11KeyboardSession::settle() {
    followFocus();
    if (const auto modifiers = std::exchange(modifiersNow_, std::nullopt)) {
        const auto before = keys_.flagsDown();
        keys_.keepOnly(*modifiers);
        if (keys_.flagsDown() != before)
            chords_.interrupt();
    }
    if (std::exchange(devicesChanged_, false))
        findDevices();
    if (std::exchange(keyboardChanged_, false) && readKeyboard()) {
        applyGrabs();
        reportConflicts();
    }
    watchAsNeeded();
}

void X11KeyboardSession::watchAsNeeded() {
    const auto isNeeded = [this] { return delivery_->wantsTypedKeys() || grabs_.holdsAny(); };
    setWatching(isNeeded());
    if (!watching_)
        setWatching(isNeeded());  // an observer that came meanwhile took the word of before
}

void X11KeyboardSession::setWatching(bool watching) {
    if (watching == watching_)
        return;
    watching_ = watching;
    if (!watching)
        delivery_->setWatching(false);
    watchKeys(connection_, devices_, watching ? Watch::On : Watch::Off);
    if (!watching)
        return;
    connection_.sync();  // whoever relies on the watch may type at once
    delivery_->setWatching(true);
}

void X11KeyboardSession::followFocus() {
    if (!std::exchange(focusMoved_, false))
        return;
    window_.followFocus();
    if (!delivery_->wantsTypedKeys())
        origin_.reset();
    if (!origin_)
        return;
    active_ = window_.activeWindow();
    // A dialog of the same program leaves the input open, but what is typed there is not told.
    if (active_ == XCB_NONE || window_.areOfOneClient(active_, *origin_))
        return;
    origin_.reset();
    delivery_->left();
}

void X11KeyboardSession::handle(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7F;
    focusMoved_ |= window_.concerns(event);
    if (type == connection_.firstXkbEvent()) {
        keyboardChanged_ |= isKeyboardMapNotice(event);
        if (const auto state = keyboardState(event))
            stateChanged(*state);
    }
    if (type == XCB_GE_GENERIC)
        handleInput(event);
    if (type == XCB_KEY_PRESS) {  // in the moment in which it was tried whether somebody else holds that key
        const auto& press = reinterpret_cast<const xcb_key_press_event_t&>(event);
        xcb_ungrab_keyboard(connection_.get(), XCB_CURRENT_TIME);
        grabbed(withoutLocks(press.detail, press.state), {press.detail, press.time}, false);
    }
}

void X11KeyboardSession::handleInput(const xcb_generic_event_t& event) {
    const auto& input = reinterpret_cast<const xcb_input_key_press_event_t&>(event);
    if (input.extension != connection_.inputOpcode())
        return;
    const bool isPress = input.event_type == XCB_INPUT_KEY_PRESS;
    devicesChanged_ |= input.event_type == XCB_INPUT_HIERARCHY;
    if (input.event_type == XCB_INPUT_RAW_BUTTON_PRESS)
        chords_.interrupt();
    if (!isPress && input.event_type != XCB_INPUT_KEY_RELEASE)
        return;
    const Stamp stamp{static_cast<KeyCode>(input.detail), input.time};
    const bool isRepeat = (input.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0;
    if (input.deviceid != devices_.master) {
        seen({input.deviceid, stamp.code, isPress ? KeyAction::Press : KeyAction::Release, stateOf(input), isRepeat},
             stamp);
    } else if (isPress) {
        grabbed(withoutLocks(stamp.code, input.mods.effective), stamp, isRepeat);
    }
}

void X11KeyboardSession::stateChanged(const KeyboardState& state) {
    if (state.group != grabs_.group()) {
        grabs_.setGroup(state.group);
        applyGrabs();
    }
    follow(state.at);
    modifiersNow_ = state.base;
}

/// Takes note of what was struck up to this moment.
void X11KeyboardSession::follow(const KeyMoment& moment) {
    for (const auto& stroke : ungrabbed_->upTo(moment))
        struck(stroke);
}

void X11KeyboardSession::struck(const KeyStroke& stroke) {
    if (stroke.device == devices_.posted &&
        posted_->take(PostedKeys::Stream::Strokes, stroke.code, stroke.action, clock_.now())) {
        if (stroke.action == KeyAction::Press)
            postedPress_ = {stroke.code, stroke.time};
        return;
    }
    const auto before = keys_.flagsDown();
    keys_.track(stroke);
    if (keys_.isModifier(stroke.code))
        modifierChanged(before, stroke.time);
    else if (stroke.action == KeyAction::Press)
        chords_.interrupt();
}

void X11KeyboardSession::modifierChanged(keys::Modifiers before, std::uint32_t time) {
    const auto after = keys_.flagsDown();
    if (const bool inChord = chords_.isAnyDeclared() && !after.isEmpty(); inChord != watchingButtons_) {
        watchingButtons_ = inChord;
        watchButtons(connection_, inChord ? Watch::On : Watch::Off);
    }
    if (before == after || !chords_.isAnyDeclared())
        return;
    if (const auto fired = chords_.changed({before, after, grabs_.group(), std::chrono::milliseconds(time)}))
        delivery_->pressed(*fired);
}

void X11KeyboardSession::seen(const DeviceKey& key, const Stamp& stamp) {
    follow({stamp.time, key.code, key.action});
    if (key.device == devices_.posted && posted_->take(PostedKeys::Stream::Keys, key.code, key.action, clock_.now()))
        return;
    if (key.action == KeyAction::Release && grabs_.released(key.code, stamp.time))
        applyGrabs();
    if (key.action == KeyAction::Press && !keys_.isModifier(key.code))
        ordinaryPress(key, stamp);
}

void X11KeyboardSession::ordinaryPress(const DeviceKey& key, const Stamp& stamp) {
    if (!delivery_->wantsTypedKeys() || window_.grabs().contains(keys_.grabOf(key))) {
        keys_.forgetDeadKey();
        return;
    }
    followFocus();
    if (!origin_)
        origin_ = active_ = window_.activeWindow();
    if (!went(stamp, key.isRepeat)) {
        origin_.reset();
        delivery_->left();
    } else if (active_ != XCB_NONE && active_ == origin_ && window_.areOfOneClient(window_.window(), active_)) {
        delivery_->typed(keys_.typed(key));
    }
}

/// To be asked after the strokes up to it were followed.
bool X11KeyboardSession::went(const Stamp& stamp, bool isRepeat) {
    // The server's own repeats have no time of their own to ask for.
    if (isRepeat && stamp.code == wentPress_.code)
        return true;
    if (!ungrabbed_->had(stamp.code, stamp.time))
        return false;
    wentPress_ = stamp;
    return true;
}

KeyGrab X11KeyboardSession::withoutLocks(KeyCode code, unsigned modifiers) const {
    return {code, static_cast<ModifierMask>(modifiers & ~unsigned{grabs_.keyboard().locks()})};
}

void X11KeyboardSession::grabbed(const KeyGrab& key, const Stamp& stamp, bool isRepeat) {
    setWatching(true);  // no gap: every key comes to us until the keyboard is given back
    window_.letGo();
    follow({stamp.time, key.code, KeyAction::Press});
    const auto hotkey = stamp == postedPress_ ? std::nullopt : grabs_.pressed(key, stamp.time, isRepeat);
    if (!hotkey)
        return;
    const bool begins = !delivery_->wantsTypedKeys();
    delivery_->pressed(*hotkey);
    if (begins)
        origin_ = active_ = window_.activeWindow();
    if (!keysDown(connection_).test(key.code))  // it went up before its keyboard was watched
        grabs_.released(key.code, stamp.time);
    applyGrabs();
}

}  // namespace tavrelon::desktop
