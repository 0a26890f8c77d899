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
/// As JSON an object with the fields' names; all are optional.
struct StandInAnswer {
    enum class Fault : std::uint8_t { None, Stall, Reset, Truncate, NotHttp };
    enum class Echo : std::uint8_t { None, Same, Uppercase };

    // Which requests it is for; empty means all.
    QString path{};   ///< a part of the request's path
    QString model{};  ///< the "model" of the request's body

    int status = 200;
    HeaderList headers{};
    std::optional<QByteArray> body{};  ///< sent as it stands ("body", "json", "bodyBase64", or "picture": a PNG)
    std::optional<QString> content{};  ///< a reply's text, put into the shape of the protocol asked
    Echo echo = Echo::None;            ///< the reply is the last user message ("same" or "uppercase")
    qint64 fillerBytes = 0;            ///< a body of that many bytes
    int delayMs = 0;                   ///< before the answer
    int dripMs = 0;                    ///< the body goes out in pieces with this pause between them
    Fault fault = Fault::None;         ///< "stall", "reset", "truncate", "notHttp"

    // What no JSON script asks for.
    bool standing = false;            ///< answers all requests that it fits, not only the first
    int dripPieces = 8;               ///< how many, when the body drips
    std::optional<QByteArray> raw{};  ///< all that is sent, head included, before filler bytes; then comes the fault,
                                      ///< or the end of the connection

    /// Throws `text::JsonError` for an object with an unknown key, so that a misspelt script is heard of.
    static StandInAnswer fromJson(const text::Json& json);

    bool fits(const ReceivedRequest& request) const;
    QByteArray bodyFor(const ReceivedRequest& request) const;
    HeaderList headersFor(const QByteArray& sent) const;
};

}  // namespace tavrelon::testing
