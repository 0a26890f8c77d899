#include "platform/web_origin.h"

#include <algorithm>

namespace tavrelon::platform {

using namespace Qt::StringLiterals;

namespace {

/// An address of 127.0.0.0/8 and not a name that begins like one.
bool isLoopbackIPv4(const QString& host) {
    const auto parts = host.split(u'.');
    return parts.size() == 4 && parts[0] == "127"_L1 && std::ranges::all_of(parts, [](const QString& part) {
               return !part.isEmpty() && part.size() <= 3 &&
                      std::ranges::all_of(part, [](QChar c) { return c >= u'0' && c <= u'9'; });
           });
}

}  // namespace

QString webOrigin(const QUrl& url) {
    const bool encrypted = url.scheme() == "https"_L1;
    if (!url.isValid() || url.host().isEmpty() || (!encrypted && url.scheme() != "http"_L1))
        return {};
    return url.scheme() + "://"_L1 + url.host().toLower() + u':' + QString::number(url.port(encrypted ? 443 : 80));
}

bool isLoopback(const QString& host) {
    return host == "localhost"_L1 || host == "::1"_L1 || isLoopbackIPv4(host);
}

bool isConfidential(const QUrl& url) {
    return url.scheme() == "https"_L1 || isLoopback(url.host());
}

bool isWithinHost(const QString& host, const QString& named) {
    return !named.isEmpty() && (host == named || host.endsWith(u'.' + named));
}

}  // namespace tavrelon::platform
