#include "desktop/qt/qt_motion.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "desktop/qt/x_settings.h"

namespace tavrelon::desktop {

using namespace Qt::StringLiterals;

namespace {

constexpr int portalPatience = 3000;  // milliseconds

constexpr auto portal = "org.freedesktop.portal.Desktop"_L1;
constexpr auto portalPath = "/org/freedesktop/portal/desktop"_L1;
constexpr auto portalSettings = "org.freedesktop.portal.Settings"_L1;

struct PortalKey {
    QLatin1StringView name;
    QLatin1StringView key;
};
constexpr PortalKey reducedMotion{"org.freedesktop.appearance"_L1, "reduced-motion"_L1};
constexpr PortalKey animations{"org.gnome.desktop.interface"_L1, "enable-animations"_L1};

template <typename Reply>
using Owned = std::unique_ptr<Reply, decltype(&std::free)>;

xcb_connection_t* connection() {
    const auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atomNamed(xcb_connection_t* x11, std::string_view name) {
    const auto asked = xcb_intern_atom(x11, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(x11, asked, nullptr), &std::free);
    return reply ? reply->atom : XCB_NONE;
}

/// The old call for a value wraps it twice.
QVariant unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

}  // namespace

QtMotion::QtMotion(QObject* parent) : QObject(parent) {
    findXSettings();
    askPortal();
}

bool QtMotion::isReduced() const {
    return std::ranges::any_of(still_, [](const auto& said) { return said.second; });
}

void QtMotion::note(Source source, bool isStill) {
    const bool earlier = isReduced();
    still_[source] = isStill;
    if (isReduced() != earlier)
        Q_EMIT changed();
}

void QtMotion::askPortal() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    bus.connect(portal, portalPath, portalSettings, u"SettingChanged"_s, this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    for (const auto& asked : {reducedMotion, animations}) {
        auto call = QDBusMessage::createMethodCall(portal, portalPath, portalSettings, u"Read"_s);
        call << QString(asked.name) << QString(asked.key);
        auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, portalPatience), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, asked] {
            const QDBusPendingReply<QDBusVariant> reply(*watcher);
            if (reply.isValid())
                settingChanged(asked.name, asked.key, reply.value());
            watcher->deleteLater();
        });
    }
}

void QtMotion::settingChanged(const QString& name, const QString& key, const QDBusVariant& value) {
    const auto is = [&](const PortalKey& known) { return name == known.name && key == known.key; };
    const auto plain = unwrapped(value.variant());
    if (is(reducedMotion))
        note(Source::PortalReducedMotion, plain.toUInt() == 1);
    else if (is(animations))
        note(Source::PortalAnimations, !plain.toBool());
}

void QtMotion::findXSettings() {
    auto* x11 = connection();
    if (!x11)
        return;
    // Qt serves the first X screen only.
    const Owned<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(x11, xcb_get_selection_owner(x11, atomNamed(x11, "_XSETTINGS_S0")), nullptr),
        &std::free);
    if (!owner || owner->owner == XCB_NONE)
        return;
    settingsWindow_ = owner->owner;
    settingsAtom_ = atomNamed(x11, "_XSETTINGS_SETTINGS");
    // The same as Qt asks for on this connection, where the last wish counts.
    const std::uint32_t wanted = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(x11, settingsWindow_, XCB_CW_EVENT_MASK, &wanted);
    QCoreApplication::instance()->installNativeEventFilter(this);
    readXSettings();
}

void QtMotion::readXSettings() {
    constexpr std::uint32_t mostOfIt = 1 << 16;  // units of four bytes
    auto* x11 = connection();
    const auto asked = xcb_get_property(x11, 0, settingsWindow_, settingsAtom_, XCB_GET_PROPERTY_TYPE_ANY, 0, mostOfIt);
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(x11, asked, nullptr), &std::free);
    if (!reply)
        return;
    const QByteArray document(static_cast<const char*>(xcb_get_property_value(reply.get())),
                              xcb_get_property_value_length(reply.get()));
    if (const auto enabled = xSetting(document, "Gtk/EnableAnimations"))
        note(Source::XSettings, *enabled == 0);
}

bool QtMotion::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    constexpr int ownType = 0x7f;  // the highest bit only marks what another client has sent
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & ownType) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto* notice = reinterpret_cast<const xcb_property_notify_event_t*>(event);
    if (notice->window == settingsWindow_ && notice->atom == settingsAtom_)
        readXSettings();
    return false;
}

}  // namespace tavrelon::desktop
