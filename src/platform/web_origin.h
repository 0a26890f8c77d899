#pragma once

#include <QUrl>

namespace tavrelon::platform {

/// Scheme, host and port, by which a server of the web is known; empty for any other address.
QString webOrigin(const QUrl& url);

/// Whether the name or address stands for the machine itself.
bool isLoopback(const QString& host);

/// Whether nobody on the way reads what is sent there: an encrypted address, or this machine.
bool isConfidential(const QUrl& url);

/// Whether `host` is the named one or lies below it.
bool isWithinHost(const QString& host, const QString& named);

}  // namespace tavrelon::platform
