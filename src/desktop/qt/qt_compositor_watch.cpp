#include "desktop/qt/qt_compositor_watch.h"

#include <xcb/xfixes.h>

#include <QGuiApplication>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace tavrelon::desktop {

QtCompositorWatch::QtCompositorWatch(std::function<void()> onChange) : onChange_(std::move(onChange)) {
    const auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    const auto* fixes = x11 ? xcb_get_extension_data(x11->connection(), &xcb_xfixes_id) : nullptr;
    if (!fixes || !fixes->present)
        return;
    // Qt serves the first X screen only, and has this selection watched for itself.
    constexpr std::string_view name = "_NET_WM_CM_S0";
    const auto asked = xcb_intern_atom(x11->connection(), 0, name.size(), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(x11->connection(), asked, nullptr), &std::free);
    if (!reply)
        return;
    selection_ = reply->atom;
    notice_ = fixes->first_event + XCB_XFIXES_SELECTION_NOTIFY;
    QCoreApplication::instance()->installNativeEventFilter(this);
}

QtCompositorWatch::~QtCompositorWatch() = default;

bool QtCompositorWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    constexpr int ownType = 0x7f;  // the highest bit only marks what another client has sent
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & ownType) == notice_ &&
        reinterpret_cast<const xcb_xfixes_selection_notify_event_t*>(event)->selection == selection_)
        onChange_();
    return false;
}

}  // namespace tavrelon::desktop
