#include "support/stand_in_service_http.h"

#include <QUrl>

namespace tavrelon::testing {

QByteArray ReceivedRequest::header(QByteArrayView name) const {
    for (const auto& [key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0)
            return value;
    }
    return {};
}

bool RequestParser::parseHead() {
    const auto end = buffer_.indexOf("\r\n\r\n");
    auto lines = buffer_.first(end).split('\n');
    const auto parts = lines.takeFirst().trimmed().split(' ');
    if (parts.size() != 3 || !parts[2].startsWith("HTTP/1."))
        return false;
    ReceivedRequest request;
    request.method = parts[0];
    request.target = parts[1];
    request.path = QUrl::fromPercentEncoding(parts[1].split('?').first());
    for (const auto& line : lines) {
        const auto colon = line.indexOf(':');
        if (colon < 1)
            return false;
        request.headers.emplace_back(line.first(colon).trimmed(), line.sliced(colon + 1).trimmed());
    }
    bodyLength_ = request.header("Content-Length").toLongLong();
    buffer_.remove(0, end + 4);
    head_ = std::move(request);
    return true;
}

RequestParser::State RequestParser::state() {
    if (!head_) {
        if (!buffer_.contains("\r\n\r\n"))
            return State::NeedsMore;
        if (!parseHead())
            return State::Malformed;
    }
    return buffer_.size() < bodyLength_ ? State::NeedsMore : State::Complete;
}

ReceivedRequest RequestParser::take() {
    auto request = std::move(*head_);
    head_.reset();
    request.body = buffer_.first(bodyLength_);
    buffer_.remove(0, bodyLength_);
    return request;
}

}  // namespace tavrelon::testing
