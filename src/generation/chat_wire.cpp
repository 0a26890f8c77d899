#include "generation/chat_wire.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "generation/pollinations_error.h"

namespace tavrelon::generation::chat_wire {

using text::Json;

std::optional<QUrl> formUrl(const QString& text) {
    QUrl url(text, QUrl::StrictMode);
    if (url.isEmpty() || !url.isValid())
        return std::nullopt;
    return url;
}

Json decimal(float value) {
    std::array<char, 32> digits;
    const auto written = std::to_chars(digits.begin(), digits.end(), value);
    return QByteArrayView(digits.data(), written.ptr).toByteArray().toDouble();
}

Json message(const char* role, Json content) {
    return {{"role", role}, {"content", std::move(content)}};
}

Json textPart(const QString& text) {
    return {{"type", "text"}, {"text", text::toJson(text)}};
}

Json imagePart(const QByteArray& jpeg) {
    return {{"type", "image_url"}, {"image_url", {{"url", "data:image/jpeg;base64," + jpeg.toBase64().toStdString()}}}};
}

platform::HttpRequest jsonPost(const QUrl& url, const std::optional<QString>& key, const Json& body) {
    platform::HttpRequest request;
    request.method = "POST";
    request.url = url;
    request.requestTimeout = requestTimeout;
    request.headers.emplace_back("Content-Type", "application/json");
    authorize(request, key);
    request.body = text::compactJson(body);
    return request;
}

void authorize(platform::HttpRequest& request, const std::optional<QString>& key) {
    if (key && !key->isEmpty())
        request.headers.emplace_back("Authorization", "Bearer " + key->toUtf8());
}

QString errorText(const QByteArray& body) {
    constexpr qsizetype longest = 10'000;  // in UTF-16; a service may send megabytes, and a person reads a line
    if (!body.isValidUtf8())
        return QStringLiteral("Unknown error");
    auto text = QString::fromUtf8(body);
    if (text.size() > longest)
        text = text.first(longest) + QChar(0x2026);
    return text;
}

Json document(const platform::HttpResponse& response) {
    if (response.status != 200)
        throw PollinationsError::apiError(response.status, errorText(response.body));
    try {
        return text::parseJson(response.body);
    } catch (const text::JsonError& error) {
        // A parser's own words may quote a whole answer.
        if (!error.localizedDescription().startsWith(QLatin1StringView("[json.")))
            throw;
        throw text::JsonError(QStringLiteral("The answer is not valid JSON."));
    }
}

const Json* firstChoiceContent(const Json& document) {
    if (!document.is_object())
        return nullptr;
    const auto* choices = text::find(document, "choices");
    const bool objects = choices && choices->is_array() &&
                         std::ranges::all_of(*choices, [](const Json& one) { return one.is_object(); });
    if (!objects || choices->empty())
        return nullptr;
    const auto* message = text::find(choices->front(), "message");
    return message && message->is_object() ? text::find(*message, "content") : nullptr;
}

}  // namespace tavrelon::generation::chat_wire
