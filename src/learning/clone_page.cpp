#include "learning/clone_page.h"

#include <QRegularExpression>

#include "learning/clone_error.h"

namespace tavrelon::learning::clone_page {

using namespace Qt::StringLiterals;
using Code = CloneServiceError::Code;

namespace {

constexpr std::chrono::seconds timeout{30};

QString contentType(const platform::HttpResponse& response) {
    for (const auto& [name, value] : response.headers)
        if (name.compare("content-type", Qt::CaseInsensitive) == 0)
            return QString::fromLatin1(value).toLower();
    return {};
}

QString charsetIn(const QString& contentType) {
    static const QRegularExpression charset(u"charset\\s*=\\s*[\"']?\\s*([a-z0-9_-]+)"_s);
    return charset.match(contentType).captured(1);
}

}  // namespace

platform::HttpRequest buildRequest(const QString& page) {
    const bool hasScheme = page.contains("://"_L1);
    const QUrl url(hasScheme ? page : u"https://"_s + page, QUrl::TolerantMode);
    if (!url.isValid() || url.host().isEmpty() || (url.scheme() != "https"_L1 && url.scheme() != "http"_L1))
        throw CloneServiceError(Code::invalidResponse);
    return {.method = "GET",
            .url = url,
            .headers = {{"Accept", "text/html, text/plain"}},
            .body = {},
            .requestTimeout = timeout,
            .resourceTimeout = timeout};
}

QByteArray htmlOf(const platform::HttpResponse& response) {
    if (response.status < 200 || response.status > 299)
        throw CloneServiceError::serverError(u"HTTP "_s + QString::number(response.status));
    const auto type = contentType(response);
    const bool isPlain = type.startsWith("text/plain"_L1);
    if (!isPlain && !type.isEmpty() && !type.contains("html"_L1))
        throw CloneServiceError(Code::invalidResponse);
    const auto body =
        isPlain ? "<pre>" + QByteArray(response.body).replace('&', "&amp;").replace('<', "&lt;") : response.body;
    const auto charset = charsetIn(type);
    if (charset == "utf-8"_L1)
        return htmlInUtf8(body);
    return charset.isEmpty() ? body : "<meta charset=" + charset.toLatin1() + ">" + body;
}

QByteArray htmlInUtf8(const QByteArray& html) {
    return "\xef\xbb\xbf" + html;
}

}  // namespace tavrelon::learning::clone_page
