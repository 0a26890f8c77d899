#include "desktop/qt/http_redirect.h"

#include <algorithm>

#include "platform/web_origin.h"

namespace tavrelon::desktop {

using namespace Qt::StringLiterals;

namespace {

bool named(const std::pair<QByteArray, QByteArray>& header, QByteArrayView name) {
    return header.first.compare(name, Qt::CaseInsensitive) == 0;
}

bool carriesKeyOrBody(const platform::HttpRequest& request) {
    return !request.body.isEmpty() ||
           std::ranges::any_of(request.headers, [](const auto& header) { return named(header, "Authorization"); });
}

void turnIntoGet(platform::HttpRequest& request) {
    request.method = "GET";
    request.body.clear();
    std::erase_if(request.headers, [](const auto& header) { return named(header, "Content-Type"); });
}

}  // namespace

bool isRedirect(int status) {
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

std::expected<platform::HttpRequest, platform::HttpError> redirected(const platform::HttpRequest& request, int status,
                                                                     const QByteArray& location) {
    const auto refuse = [](const text::LocalizedText& why) {
        return std::unexpected(platform::HttpError{platform::HttpError::Code::Transport, why});
    };
    const auto target = request.url.resolved(QUrl::fromEncoded(location, QUrl::StrictMode));
    if (!target.isValid() || target.host().isEmpty() || (target.scheme() != "https"_L1 && target.scheme() != "http"_L1))
        return refuse(
            {u"The server redirected to an address that cannot be followed."_s, u"服务器重定向到无法访问的地址。"_s});

    auto next = request;
    next.url = target;
    if ((status == 303 && request.method != "HEAD") || ((status == 301 || status == 302) && request.method == "POST"))
        turnIntoGet(next);
    if (request.url.scheme() == "https"_L1 && target.scheme() == "http"_L1 && carriesKeyOrBody(request))
        return refuse(
            {u"The server redirected to an address without encryption."_s, u"服务器重定向到未加密的地址。"_s});
    if (platform::webOrigin(request.url) == platform::webOrigin(target))
        return next;
    if (!next.body.isEmpty() || next.staysAtOrigin)
        return refuse(
            text::LocalizedText(u"The server redirected to another one, %1. The request was not sent there."_s,
                                u"服务器重定向到另一台服务器 %1，请求未发送到那里。"_s)
                .arg(target.host()));
    std::erase_if(next.headers, [](const auto& header) { return named(header, "Authorization"); });
    return next;
}

}  // namespace tavrelon::desktop
