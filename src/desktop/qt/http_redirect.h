#pragma once

#include <expected>

#include "platform/http_session.h"

namespace tavrelon::desktop {

/// How many redirects one exchange follows.
inline constexpr int mostRedirects = 10;

/// Whether an answer with this status and a "Location" header sends the client elsewhere.
bool isRedirect(int status);

/// The request that follows a redirect. The Authorization header stays only while scheme, host and port stay, and a
/// body or what stays at its origin goes nowhere else: that is an error, like a way from https to http with a key, and
/// an address that is not HTTP.
std::expected<platform::HttpRequest, platform::HttpError> redirected(const platform::HttpRequest& request, int status,
                                                                     const QByteArray& location);

}  // namespace tavrelon::desktop
