#include "desktop/qt/http_error_text.h"

namespace tavrelon::desktop {

using namespace Qt::StringLiterals;

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
            return {Code::Transport, u"The server %1 could not be found."_s.arg(host)};
        case QNetworkReply::ConnectionRefusedError:
            return {Code::Transport, u"Could not connect to %1."_s.arg(host)};
        case QNetworkReply::TimeoutError:
        case QNetworkReply::ProxyTimeoutError:
            return {Code::TimedOut, u"The request timed out."_s};
        case QNetworkReply::SslHandshakeFailedError:
            return {Code::Transport, tlsFault.isEmpty()
                                         ? u"A secure connection to %1 could not be made."_s.arg(host)
                                         : u"A secure connection to %1 could not be made: %2."_s.arg(host, tlsFault)};
        case QNetworkReply::RemoteHostClosedError:
            return {Code::Transport, u"The network connection was lost."_s};
        case QNetworkReply::ProtocolFailure:
            return {Code::NotHttp, u"%1 did not answer in HTTP."_s.arg(host)};
        case QNetworkReply::ProxyConnectionRefusedError:
        case QNetworkReply::ProxyConnectionClosedError:
        case QNetworkReply::ProxyNotFoundError:
        case QNetworkReply::ProxyAuthenticationRequiredError:
        case QNetworkReply::UnknownProxyError:
            return {Code::Transport, u"The proxy did not let the request through."_s};
        case QNetworkReply::UnknownNetworkError:
            return {Code::Transport, u"%1 cannot be reached."_s.arg(host)};
        default:
            return {Code::Transport, u"The exchange with %1 failed."_s.arg(host)};
    }
}

}  // namespace tavrelon::desktop
