#include "support/stand_in_service_replies.h"

namespace tavrelon::testing {

using text::Json;
using namespace Qt::StringLiterals;

Json parsedOrNull(const QByteArray& body) {
    return Json::parse(body.begin(), body.end(), nullptr, false);
}

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

/// What services other than chats give when nothing is scripted.
std::optional<QByteArray> usualBody(const QString& path) {
    if (path.endsWith("/api/tags"_L1))
        return text::compactJson({{"models", Json::array({{{"name", "llava"}}, {{"name", "qwen-vl"}}})}});
    if (path.endsWith("/images/generations"_L1))
        return text::compactJson({{"data", Json::array({{{"b64_json", pictureBase64.toStdString()}}})}});
    if (path.contains("/image/"_L1) || path.endsWith(".png"_L1))
        return picture();
    return std::nullopt;
}

/// A reply in the shape of the protocol that the path belongs to.
QByteArray chatReply(const QString& path, const QString& content) {
    const Json message = {{"role", "assistant"}, {"content", text::toJson(content)}};
    if (path.endsWith("/api/chat"_L1))
        return text::compactJson({{"message", message}, {"done", true}});
    const Json choice = {{"index", 0}, {"message", message}, {"finish_reason", "stop"}};
    return text::compactJson({{"object", "chat.completion"}, {"choices", Json::array({choice})}});
}

QString lastUserMessage(const QByteArray& body) {
    const auto document = parsedOrNull(body);
    if (!document.is_object() || !document.contains("messages") || !document["messages"].is_array())
        return {};
    QString found;
    for (const auto& message : document["messages"]) {
        if (!message.is_object() || message.value("role", "") != "user" || !message.contains("content"))
            continue;
        const auto& content = message["content"];
        if (content.is_string()) {
            found = text::stringFrom(content);
            continue;
        }
        for (const auto& part : content) {
            if (part.is_object() && part.contains("text"))
                found = text::stringFrom(part["text"]);
        }
    }
    return found;
}

}  // namespace tavrelon::testing
