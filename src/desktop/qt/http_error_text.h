#pragma once

#include <QNetworkReply>

#include "platform/http_session.h"

namespace tavrelon::desktop {

/// Whether the error only repeats what the status says, so that the answer is a whole one.
bool isStatusError(QNetworkReply::NetworkError error);

/// What the user reads when an exchange with this server failed: short, and of the address only the host.
platform::HttpError httpError(QNetworkReply::NetworkError error, const QUrl& url, const QString& tlsFault);

}  // namespace tavrelon::desktop
