#include "generation/image_wire.h"

#include <algorithm>

#include "generation/chat_wire.h"
#include "generation/pollinations_error.h"
#include "text/characters.h"

namespace tavrelon::generation::image_wire {

using text::Json;
using namespace Qt::StringLiterals;

namespace {

std::optional<QByteArray> contentType(const platform::HttpResponse& response) {
    for (const auto& [name, value] : response.headers) {
        if (name.compare("content-type", Qt::CaseInsensitive) == 0)
            return value.trimmed().toLower();
    }
    return std::nullopt;
}

QByteArray imageBody(const platform::HttpResponse& response, bool acceptable) {
    if (response.status != 200)
        throw PollinationsError::imageGenerationFailed(response.status);
    if (!acceptable)
        throw PollinationsError::invalidImageData();
    return response.body;
}

/// What follows the first comma: the head of a data URL goes.
QString withoutDataHead(const QString& text) {
    return text.sliced(text.indexOf(u',') + 1);
}

/// The decoded bytes. Characters outside of the alphabet are passed over; what is left must be whole groups of four.
std::optional<QByteArray> decodeBase64(const QString& text) {
    QByteArray digits;
    for (const QChar c : text) {
        const bool known = c.unicode() < 0x80 && (c.isLetterOrNumber() || c == u'+' || c == u'/' || c == u'=');
        if (known)
            digits += c.toLatin1();
    }
    if (digits.isEmpty() || digits.size() % 4 != 0)
        return std::nullopt;
    auto decoded = QByteArray::fromBase64Encoding(digits, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        return std::nullopt;
    return std::move(decoded.decoded);
}

std::optional<QString> firstListedUrl(const Json& item) {
    const auto* list = text::find(item, "url_list");
    const bool texts = list && list->is_array() && !list->empty() &&
                       std::ranges::all_of(*list, [](const Json& one) { return one.is_string(); });
    return texts ? std::optional(text::trimmed(text::stringFrom(list->front()))) : std::nullopt;
}

/// The first image of the answer, moved out of it: an object as it is, a text as an address.
std::optional<Json> firstGLMImageItem(Json& document) {
    const auto data = document.find("data");
    if (data == document.end())
        return std::nullopt;
    Json& item = data->is_array() && !data->empty() ? data->front() : *data;
    if (item.is_object())
        return std::move(item);
    if (item.is_string() && data->is_array())
        return Json{{"url", std::move(item)}};
    return std::nullopt;
}

std::variant<QByteArray, QUrl> decodeGLMImageItem(const Json& item) {
    if (const auto encoded = text::firstText(item, {"b64_json", "base64", "image", "image_base64"})) {
        if (auto bytes = decodeBase64(withoutDataHead(*encoded)))
            return std::move(*bytes);
    }
    auto address = text::firstText(item, {"url", "image_url"});
    if (!address)
        address = firstListedUrl(item);
    if (address) {
        const auto url = chat_wire::formUrl(*address);
        // An address of the web is no base64, even where its letters happen to come in fours.
        const bool web = url && url->scheme().startsWith("http"_L1) && !url->host().isEmpty();
        if (auto bytes = web ? std::nullopt : decodeBase64(withoutDataHead(*address)))
            return std::move(*bytes);
        if (url)
            return *url;
    }
    throw PollinationsError::parseError(u"GLM image payload missing image data"_s);
}

}  // namespace

QUrl pollinationsUrl(const QString& baseURL, const QString& prompt, const QString& model) {
    const auto trimmed = text::trimmed(prompt);
    if (trimmed.isEmpty() || !trimmed.isValidUtf16())
        throw PollinationsError::invalidPrompt();
    const auto encoded = QString::fromLatin1(QUrl::toPercentEncoding(trimmed, "!$&'()*+,/:=@"));
    const auto url = chat_wire::formUrl(baseURL + "/image/"_L1 + encoded + "?model="_L1 + model +
                                        "&width=1024&height=1024&nologo=true&enhance=false&quality=hd"_L1);
    if (!url)
        throw PollinationsError::invalidURL();
    return *url;
}

QByteArray readPollinationsImage(const platform::HttpResponse& response) {
    const auto type = contentType(response);
    return imageBody(response, type && type->startsWith("image/"));
}

QByteArray readDownload(const platform::HttpResponse& response) {
    const auto type = contentType(response);
    return imageBody(response, !type || type->startsWith("image/"));
}

platform::HttpRequest buildGLMRequest(const GLMCall& call) {
    if (!call.key || call.key->isEmpty())
        throw PollinationsError::apiError(401, {u"GLM API key not configured"_s, u"未配置 GLM API 密钥"_s});
    const auto url = chat_wire::formUrl(call.baseURL + "/images/generations"_L1);
    if (!url)
        throw PollinationsError::invalidURL();
    Json body = {
        {"model", text::toJson(call.model)},
        {"prompt", text::toJson(call.prompt)},
        {"size", std::to_string(call.width) + "x" + std::to_string(call.height)},
    };
    if (const auto quality = text::trimmedOrAbsent(call.quality))
        body["quality"] = text::toJson(*quality);
    return chat_wire::jsonPost(*url, call.key, body);
}

std::variant<QByteArray, QUrl> readGLMAnswer(const platform::HttpResponse& response) {
    auto document = chat_wire::document(response);
    if (!document.is_object())
        throw PollinationsError::parseError(u"Invalid GLM image response format"_s);
    const auto item = firstGLMImageItem(document);
    if (!item)
        throw PollinationsError::parseError(u"No GLM image payload found"_s);
    return decodeGLMImageItem(*item);
}

}  // namespace tavrelon::generation::image_wire
