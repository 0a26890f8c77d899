#include "desktop/qt/http_error_text.h"

namespace tavrelon::desktop {

using namespace Qt::StringLiterals;
using text::LocalizedText;

bool isStatusError(QNetworkReply::NetworkError error) {
    return error == QNetworkReply::ProtocolInvalidOperationError ||
           error == QNetworkReply::ProxyAuthenticationRequiredError ||
           (error >= QNetworkReply::ContentAccessDenied && error <= QNetworkReply::UnknownContentError) ||
           error >= QNetworkReply::InternalServerError;
}

platform::HttpError httpError(QNetworkReply::NetworkError error, const QUrl& url, const QString& tlsFault) {
    using Code = platform::HttpError::Code;
    const auto host = url.host();
    switch (error) {
        case QNetworkReply::HostNotFoundError:
            return {Code::Transport,
                    LocalizedText(u"The server %1 could not be found."_s, u"找不到服务器 %1。"_s).arg(host)};
        case QNetworkReply::ConnectionRefusedError:
            return {Code::Transport, LocalizedText(u"Could not connect to %1."_s, u"无法连接到 %1。"_s).arg(host)};
        case QNetworkReply::TimeoutError:
        case QNetworkReply::ProxyTimeoutError:
            return {Code::TimedOut, {u"The request timed out."_s, u"请求超时。"_s}};
        case QNetworkReply::SslHandshakeFailedError:
            return {Code::Transport, tlsFault.isEmpty()
                                         ? LocalizedText(u"A secure connection to %1 could not be made."_s,
                                                         u"无法与 %1 建立安全连接。"_s)
                                               .arg(host)
                                         : LocalizedText(u"A secure connection to %1 could not be made: %2."_s,
                                                         u"无法与 %1 建立安全连接：%2。"_s)
                                               .arg(host, tlsFault)};
        case QNetworkReply::RemoteHostClosedError:
            return {Code::Transport, {u"The network connection was lost."_s, u"网络连接已断开。"_s}};
        case QNetworkReply::ProtocolFailure:
            return {Code::NotHttp, LocalizedText(u"%1 did not answer in HTTP."_s, u"%1 的回答不是 HTTP。"_s).arg(host)};
        case QNetworkReply::ProxyConnectionRefusedError:
        case QNetworkReply::ProxyConnectionClosedError:
        case QNetworkReply::ProxyNotFoundError:
        case QNetworkReply::ProxyAuthenticationRequiredError:
        case QNetworkReply::UnknownProxyError:
            return {Code::Transport, {u"The proxy did not let the request through."_s, u"代理未放行请求。"_s}};
        case QNetworkReply::UnknownNetworkError:
            return {Code::Transport, LocalizedText(u"%1 cannot be reached."_s, u"无法访问 %1。"_s).arg(host)};
        default:
            return {Code::Transport,
                    LocalizedText(u"The exchange with %1 failed."_s, u"与 %1 的通信失败。"_s).arg(host)};
    }
}

}  // namespace tavrelon::desktop
