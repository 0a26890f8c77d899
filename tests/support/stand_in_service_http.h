#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <utility>
#include <vector>

namespace tavrelon::testing {

using HeaderList = std::vector<std::pair<QByteArray, QByteArray>>;

/// One request as it came over the wire.
struct ReceivedRequest {
    QByteArray method;
    QString path;       ///< percent-decoded
    QByteArray target;  ///< path and query as they came
    HeaderList headers;
    QByteArray body;
    bool abandoned = false;  ///< the client went away before the answer was complete

    /// The header's value, empty when it is missing.
    QByteArray header(QByteArrayView name) const;
};

/// Reads HTTP/1.1 requests out of a stream of bytes. Its own, so that the answers may break every rule.
class RequestParser {
 public:
    enum class State : std::uint8_t { NeedsMore, Complete, Malformed };

    void feed(const QByteArray& bytes) { buffer_ += bytes; }

    /// Whether a whole request is there; then `take` gives it and leaves what follows.
    State state();
    ReceivedRequest take();

 private:
    bool parseHead();

    QByteArray buffer_;
    std::optional<ReceivedRequest> head_;
    qsizetype bodyLength_ = 0;
};

}  // namespace tavrelon::testing
