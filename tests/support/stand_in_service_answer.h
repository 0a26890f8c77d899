#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "support/stand_in_service_http.h"
#include "text/json.h"

namespace tavrelon::testing {

/// What the stand-in service does with one request: the answer's content, and how badly it behaves in giving it.
struct StandInAnswer {
    enum class Fault : std::uint8_t { None, Stall, Reset, Truncate, NotHttp };

    QString path{};  ///< a part of the path of the requests that it is for; empty means all
    int status = 200;
    HeaderList headers{};
    std::optional<QByteArray> body{};  ///< sent as it stands
    std::optional<QString> content{};  ///< a reply's text, put into the shape of the protocol asked
    qint64 fillerBytes = 0;            ///< a body of that many bytes
    int delayMs = 0;                   ///< before the answer
    int dripMs = 0;                    ///< the body goes out in pieces with this pause between them
    int dripPieces = 8;                ///< how many
    Fault fault = Fault::None;         ///< "stall", "reset", "truncate", "notHttp"
    std::optional<QByteArray> raw{};   ///< all that is sent, head included, before filler bytes; then comes the fault,
                                       ///< or the end of the connection

    /// Of an object with any of "path", "status", "body", "content", "delayMs" and "fault". Throws `text::JsonError`
    /// for any other name, so that a misspelt script is heard of.
    static StandInAnswer fromJson(const text::Json& json);

    bool fits(const ReceivedRequest& request) const { return request.path.contains(path); }
    QByteArray bodyFor(const ReceivedRequest& request) const;
    HeaderList headersFor(const QByteArray& sent) const;
};

}  // namespace tavrelon::testing
