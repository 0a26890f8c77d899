#include "support/stand_in_service_replies.h"

#include "text/json.h"

namespace tavrelon::testing {

using text::Json;
using namespace Qt::StringLiterals;

/// A sun before a blue sky, 64 by 64, as PNG.
const QByteArray pictureBase64(
    "iVBORw0KGgoAAAANSUhEUgAAAEAAAABACAIAAAAlC+aJAAAAoklEQVR42u3ZWRHAIAxF0aekStBUdRVWCbXAkkKWOxMB9/xBoqvd"
    "oUcAAAAAAAAAAAAArOZ9Ws94BHSmmzN0JN2QobP16wadTV9nyEn9tEF+6ucM9QC/1k8Y5K1+1FAJsK1+yFAGsLm+3wAAAAAAAAAA"
    "AACA53QIAF9KB4DwWwkWWz4A4XejGbbTGe4DSS40GW5kSa6UHLoBAAAAAAAAAAHnA2KB0rjnSUR7AAAAAElFTkSuQmCC");

QByteArray picture() {
    return QByteArray::fromBase64(pictureBase64);
}

bool isPicture(const QByteArray& body) {
    return body.startsWith("\x89PNG");
}

/// A reply in the shape of the protocol that the path belongs to.
QByteArray chatReply(const QString& path, const QString& content) {
    const Json message = {{"role", "assistant"}, {"content", text::toJson(content)}};
    if (path.endsWith("/api/chat"_L1))
        return text::compactJson({{"message", message}, {"done", true}});
    const Json choice = {{"index", 0}, {"message", message}, {"finish_reason", "stop"}};
    return text::compactJson({{"object", "chat.completion"}, {"choices", Json::array({choice})}});
}

}  // namespace tavrelon::testing
