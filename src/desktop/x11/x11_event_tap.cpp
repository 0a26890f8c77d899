#include "desktop/x11/x11_event_tap.h"

#include "desktop/x11/x11_event_tap_thread.h"

namespace tavrelon::desktop {

X11EventTap::X11EventTap(async::MainLoop& loop, platform::Log& log, std::shared_ptr<PostedKeys> posted)
    : loop_(loop), log_(log), posted_(std::move(posted)) {}

X11EventTap::~X11EventTap() {
    stop();
}

std::expected<void, platform::TapError> X11EventTap::start(Handler handler) {
    stop();
    auto connection = X11Connection::open();
    if (!connection)
        return std::unexpected(platform::TapError{connection.error()});
    auto wake = std::make_shared<X11ThreadWake>();
    if (!wake->isOpen())
        return std::unexpected(platform::TapError{QStringLiteral("no file descriptors left")});
    auto delivery = std::make_shared<TapDelivery>(loop_, std::move(handler), wake);
    auto session = X11TapSession::open(loop_, **connection, delivery, posted_, log_);
    if (!session)
        return std::unexpected(platform::TapError{session.error()});
    (*session)->setHotkeys(hotkeys_);
    delivery_ = std::move(delivery);
    thread_ = std::make_unique<X11TapThread>(loop_, log_, std::move(*connection), std::move(*session), std::move(wake));
    return {};
}

void X11EventTap::stop() {
    if (delivery_)
        delivery_->close();
    thread_.reset();
    delivery_.reset();
}

void X11EventTap::setHotkeys(const std::vector<keys::HotkeyConfig>& hotkeys) {
    hotkeys_ = hotkeys;
    if (thread_)
        thread_->setHotkeys(hotkeys);
}

}  // namespace tavrelon::desktop
