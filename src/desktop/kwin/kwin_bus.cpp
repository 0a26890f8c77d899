#include "desktop/kwin/kwin_bus.h"

#include <QDBusMessage>

#include "desktop/linux/process/bus_state.h"

namespace tavrelon::desktop {

std::expected<std::shared_ptr<KWinBus>, QString> KWinBus::open() {
    const auto address = sessionBusAddress();
    // Without a bus the library would start one of its own.
    if (address.isEmpty() || busState(address, callLimit) != BusState::Speaks)
        return std::unexpected(QStringLiteral("The session bus, by which KWin is asked, does not answer."));
    static int opened = 0;
    const auto name = QStringLiteral("tavrelon-kwin-%1").arg(++opened);
    auto connection = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
    if (!connection.isConnected())
        return std::unexpected(QStringLiteral("The session bus, by which KWin is asked, takes no connection."));
    return std::shared_ptr<KWinBus>(new KWinBus(name, std::move(connection)));
}

KWinBus::~KWinBus() {
    QDBusConnection::disconnectFromBus(name_);
}

std::optional<QVariantList> KWinBus::call(const Address& address, const QString& method, const QVariantList& arguments,
                                          std::chrono::milliseconds limit) {
    auto question = QDBusMessage::createMethodCall(address.service, address.path, address.interface, method);
    question.setArguments(arguments);
    question.setAutoStartService(false);
    const auto answer = connection_.call(question, QDBus::Block, static_cast<int>(limit.count()));
    return answer.type() == QDBusMessage::ReplyMessage ? std::optional(answer.arguments()) : std::nullopt;
}

QString KWinBus::ownerOf(const QString& service) {
    const auto owner = call({.service = QStringLiteral("org.freedesktop.DBus"),
                             .path = QStringLiteral("/org/freedesktop/DBus"),
                             .interface = QStringLiteral("org.freedesktop.DBus")},
                            QStringLiteral("GetNameOwner"), {service});
    return owner && !owner->isEmpty() ? owner->front().toString() : QString();
}

}  // namespace tavrelon::desktop
