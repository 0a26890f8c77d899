#include "generation/chat_wire.h"

#include <algorithm>

#include "generation/error_text.h"
#include "platform/web_origin.h"
#include "text/characters.h"

namespace tavrelon::generation::chat_wire {

using text::Json;

namespace {

qsizetype base64Size(qsizetype bytes) {
    return (bytes + 2) / 3 * 4;
}

/// Characters by which a key would end its header line and begin another.
bool isControl(QChar c) {
    return c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line ||
           c.category() == QChar::Separator_Paragraph;
}

/// Piece by piece: what a whole conversion would hold beside the result is a second picture.
void appendBase64(QByteArray& text, const QByteArray& bytes) {
    constexpr qsizetype piece = 3 * 8 * 1024;
    for (qsizetype from = 0; from < bytes.size(); from += piece)
        text += QByteArray::fromRawData(bytes.constData() + from, std::min(piece, bytes.size() - from)).toBase64();
}

}  // namespace

std::optional<QUrl> formUrl(const QString& text) {
    QUrl url(text, QUrl::StrictMode);
    if (url.isEmpty() || !url.isValid())
        return std::nullopt;
    return url;
}

QString withoutThoughts(const QString& reply) {
    static constexpr QLatin1StringView begin("<think>"), end("</think>");
    if (!text::trimmed(reply).startsWith(begin))
        return reply;
    const auto at = reply.indexOf(end);
    return at < 0 ? reply : text::trimmed(reply.sliced(at + end.size()));
}

Json message(const char* role, Json content) {
    return {{"role", role}, {"content", std::move(content)}};
}

Json textPart(const QString& text) {
    return {{"type", "text"}, {"text", text::toJson(text)}};
}

Json Pictures::dataUrl(const QByteArray& jpeg) {
    return mark(QLatin1StringView("data:image/jpeg;base64,"), jpeg);
}

Json Pictures::base64(const QByteArray& jpeg) {
    return mark({}, jpeg);
}

Json Pictures::part(const QByteArray& jpeg) {
    return {{"type", "image_url"}, {"image_url", {{"url", dataUrl(jpeg)}}}};
}

/// A binary value, which prints as something that no text in a document can print as: its quotes have no backslash.
Json Pictures::mark(QLatin1StringView head, const QByteArray& jpeg) {
    pictures_.push_back({head, jpeg});
    return Json::binary({}, pictures_.size() - 1);
}

QByteArray Pictures::write(const Json& document) const {
    static constexpr QByteArrayView markHead(R"({"bytes":[],"subtype":)");
    const auto text = text::compactJson(document);
    qsizetype size = text.size();
    for (const auto& picture : pictures_)
        size += base64Size(picture.jpeg.size()) + picture.head.size();
    QByteArray written;
    written.reserve(size);
    qsizetype from = 0;
    for (auto at = text.indexOf(markHead); at >= 0; at = text.indexOf(markHead, from)) {
        written += QByteArrayView(text).sliced(from, at - from);
        from = text.indexOf('}', at) + 1;
        const auto number = text.sliced(at + markHead.size(), from - 1 - at - markHead.size());
        const auto& picture = pictures_.at(number.toULongLong());
        written += '"';
        written += QByteArrayView(picture.head.data(), picture.head.size());
        appendBase64(written, picture.jpeg);
        written += '"';
    }
    return written += QByteArrayView(text).sliced(from);
}

platform::HttpRequest jsonPost(const QUrl& url, const std::optional<QString>& key, const Json& body,
                               const Pictures& pictures) {
    platform::HttpRequest request;
    request.method = "POST";
    request.url = url;
    request.requestTimeout = requestTimeout;
    request.headers.emplace_back("Content-Type", "application/json");
    authorize(request, key);
    request.body = pictures.write(body);
    return request;
}

void authorize(platform::HttpRequest& request, const std::optional<QString>& key) {
    const auto sent = key ? text::trimmedOrAbsent(*key) : std::nullopt;
    if (!sent || platform::webOrigin(request.url).isEmpty())  // an address that nothing is sent to
        return;
    const auto host = request.url.host();
    if (std::ranges::any_of(*sent, isControl))
        throw KeyRefused(
            text::LocalizedText(QStringLiteral("The API key for %1 holds a line break or another control character. "
                                               "Enter it again."),
                                QStringLiteral("%1 的 API 密钥含有换行或其他控制字符，请重新输入。"))
                .arg(host));
    if (!platform::isConfidential(request.url))
        throw KeyRefused(
            text::LocalizedText(QStringLiteral("The API key is not sent to %1 without encryption. "
                                               "Use an address that begins with https://."),
                                QStringLiteral("API 密钥不会以未加密方式发送到 %1。请使用以 https:// 开头的地址。"))
                .arg(host));
    request.headers.emplace_back("Authorization", "Bearer " + sent->toUtf8());
}

QString errorText(const QByteArray& body) {
    constexpr qsizetype longest = 10'000;  // a service may send megabytes, and a person reads a line
    if (!body.isValidUtf8())
        return QStringLiteral("Unknown error");
    return error_text::oneLine(QString::fromUtf8(body.first(std::min(body.size(), longest))));
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
        throw text::JsonError(
            {QStringLiteral("The answer is not valid JSON."), QStringLiteral("回答不是有效的 JSON。")});
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
