#include "desktop/x11/keys/x11_hotkeys.h"

#include <algorithm>
#include <iterator>

#include "desktop/x11/keys/x11_keyboard_notices.h"
#include "desktop/x11/keys/x11_keyboard_thread.h"

namespace tavrelon::desktop {

X11Hotkeys::X11Hotkeys(async::MainLoop& loop, platform::Log& log, std::shared_ptr<PostedKeys> posted)
    : loop_(loop), log_(log), posted_(std::move(posted)) {
    posted_->setMakeWay([this](const keys::HotkeyConfig& chord) { return makeWay(chord); });
}

X11Hotkeys::~X11Hotkeys() {
    posted_->setMakeWay(nullptr);
    stop();
}

std::expected<void, platform::HotkeysError> X11Hotkeys::start(Handler handler) {
    stop();
    auto connection = X11Connection::open();
    if (!connection)
        return std::unexpected(platform::HotkeysError{connection.error()});
    if (!X11ThreadWake().isOpen())
        return std::unexpected(platform::HotkeysError{QStringLiteral("no file descriptors left")});
    auto delivery = std::make_shared<X11KeyDelivery>(loop_, std::move(handler));
    auto session = X11KeyboardSession::open(**connection, delivery, posted_, loop_, log_);
    if (!session)
        return std::unexpected(platform::HotkeysError{session.error()});
    (*session)->declare(wanted_);
    delivery_ = std::move(delivery);
    thread_ = std::make_unique<X11KeyboardThread>(log_, *std::move(connection), *std::move(session), wanted_);
    return {};
}

void X11Hotkeys::stop() {
    if (delivery_)
        delivery_->close();
    thread_.reset();
    delivery_.reset();
}

void X11Hotkeys::declare(const std::vector<platform::WantedHotkey>& wanted) {
    wanted_ = wanted;
    if (thread_)
        thread_->declare(wanted);
}

void X11Hotkeys::observe(platform::KeyObserver::Calls calls) {
    delivery_->observe(std::move(calls));
    if (!delivery_->isWatching())
        thread_->applyAnew();
}

std::shared_ptr<void> X11Hotkeys::makeWay(const keys::HotkeyConfig& chord) {
    auto rest = wanted_;
    const auto count = std::erase_if(rest, [&](const platform::WantedHotkey& hotkey) {
        return hotkey.fires == platform::WantedHotkey::Fires::OnPress &&
               hotkey.keys.matches(chord.keyCode, chord.modifiers);
    });
    if (count == 0 || !thread_)
        return nullptr;
    thread_->declare(rest);
    return {nullptr, [this](void*) {
                if (thread_)
                    thread_->declare(wanted_);
            }};
}

std::vector<keys::HotkeyConfig> X11Hotkeys::heldElsewhere(const std::vector<keys::HotkeyConfig>& hotkeys) {
    const auto connection = X11Connection::open();
    const auto keyboard = connection ? X11Keyboard::fromServer(**connection) : nullptr;
    if (!keyboard)
        return {};
    std::vector<keys::HotkeyConfig> held;
    std::ranges::copy_if(hotkeys, std::back_inserter(held),
                         [&, group = keyboardGroup(**connection)](const auto& hotkey) {
                             return !desktop::heldElsewhere(**connection, grabsFor(hotkey, *keyboard, group)).empty();
                         });
    return held;
}

}  // namespace tavrelon::desktop
