#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <chrono>
#include <expected>
#include <utility>
#include <vector>

#include "async/task.h"
#include "text/localized_text.h"

namespace tavrelon::platform {

using HttpHeaders = std::vector<std::pair<QByteArray, QByteArray>>;

struct HttpRequest {
    QByteArray method = "GET";
    QUrl url{};
    HttpHeaders headers{};
    QByteArray body{};
    std::chrono::milliseconds requestTimeout{60'000};    ///< without a byte moving
    std::chrono::milliseconds resourceTimeout{120'000};  ///< for the whole exchange
    bool staysAtOrigin = false;                          ///< a redirect to another origin is an error
};

struct HttpResponse {
    int status = 0;
    HttpHeaders headers{};
    QByteArray body{};
    QUrl url{};  ///< the address that answered, after redirects
};

struct HttpError {
    enum class Code { InvalidUrl, TimedOut, NotHttp, BodyTooLarge, Transport };

    Code code = Code::Transport;
    text::LocalizedText description;  ///< for the user
};

/// Sends HTTP requests. Main thread. Certificates are verified. Redirects are followed; to another origin
/// without the Authorization header, and not at all with a body. A body of more than 64 MiB is an error. A cancelled or
/// dropped task ends the exchange on the wire. A status of any number is a response, not an error.
class HttpSession {
 public:
    static constexpr qint64 bodyCap = qint64{64} * 1024 * 1024;

    virtual ~HttpSession() = default;
    virtual async::Task<std::expected<HttpResponse, HttpError>> send(HttpRequest request) = 0;
};

}  // namespace tavrelon::platform
