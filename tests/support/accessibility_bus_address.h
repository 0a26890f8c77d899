#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>

namespace tavrelon::testing {

/// Where the accessibility bus of this session is. Starts it when it is not there yet. As toolkits do, it goes where a
/// variable says that it is: the way to a sandbox's proxy.
inline QString accessibilityBusAddress() {
    if (const auto told = qEnvironmentVariable("AT_SPI_BUS_ADDRESS"); !told.isEmpty())
        return told;
    const QDBusReply<QString> address = QDBusConnection::sessionBus().call(
        QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                       QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress")));
    return address.value();
}

}  // namespace tavrelon::testing
