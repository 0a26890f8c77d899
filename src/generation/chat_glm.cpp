#include "generation/chat_glm.h"

#include "generation/chat_wire.h"
#include "generation/pollinations_error.h"
#include "scenes/json_fields.h"

namespace tavrelon::generation::chat_glm {

using text::Json;

namespace {

bool refusesImages(PollinationsModel model) {
    return model == PollinationsModel::openai || model == PollinationsModel::gemini ||
           model == PollinationsModel::nvidiaNemotron || model == PollinationsModel::glmVisionFlash;
}

void check(const Call& call) {
    if (!call.key || call.key->isEmpty())
        throw PollinationsError::apiError(
            401, {QStringLiteral("GLM API key not configured"), QStringLiteral("未配置 GLM API 密钥")});
    if (call.prompt.image && refusesImages(call.model))
        throw PollinationsError::unsupportedImageInput(
            QStringLiteral("GLM model %1 does not support base64 image input").arg(identifier(call.model)));
}

Json messages(const Call& call, chat_wire::Pictures& pictures) {
    auto list = Json::array();
    if (!call.prompt.system.isEmpty())
        list.push_back(chat_wire::message("system", text::toJson(call.prompt.system)));
    auto content = text::toJson(call.prompt.user);
    if (call.prompt.image && call.model == PollinationsModel::glmVision)
        content = Json::array({pictures.part(*call.prompt.image), chat_wire::textPart(call.prompt.user)});
    list.push_back(chat_wire::message("user", std::move(content)));
    return list;
}

/// The vision models have no JSON mode.
const char* responseFormat(const Call& call) {
    const bool vision = call.model == PollinationsModel::glmVision || call.model == PollinationsModel::glmVisionFlash;
    return call.jsonMode == JsonMode::On && !vision ? "json_object" : "text";
}

/// The text of one element of a content array.
std::optional<QString> piece(const Json& element) {
    if (!element.is_object())
        return std::nullopt;
    for (const char* key : {"text", "content"}) {
        if (const auto* value = text::find(element, key); value && value->is_string())
            return text::stringFrom(*value);
    }
    return std::nullopt;
}

std::optional<QString> readContent(const Json& content) {
    if (content.is_string())
        return text::stringFrom(content);
    if (!content.is_array())
        return std::nullopt;
    std::optional<QString> joined;
    for (const auto& element : content) {
        if (const auto found = piece(element))
            joined = joined.value_or(QString()) + *found;
    }
    return joined;
}

}  // namespace

platform::HttpRequest buildRequest(const Call& call) {
    check(call);
    const auto url = chat_wire::formUrl(call.baseURL + QStringLiteral("/chat/completions"));
    if (!url)  // a fault of the build's configuration
        throw PollinationsError::invalidURL();
    chat_wire::Pictures pictures;
    const Json body = {
        {"model", text::toJson(identifier(call.model))},
        {"messages", messages(call, pictures)},
        {"stream", false},
        {"temperature", scenes::shortestDecimal(call.prompt.temperature)},
        {"top_p", 0.95},
        {"do_sample", true},
        {"max_tokens", call.prompt.maxTokens},
        {"tool_stream", false},
        {"response_format", {{"type", responseFormat(call)}}},
        {"thinking", {{"type", "enabled"}, {"clear_thinking", true}}},
    };
    return chat_wire::jsonPost(*url, call.key, body, pictures);
}

QString readResponse(const platform::HttpResponse& response) {
    const auto document = chat_wire::document(response);
    const auto* content = chat_wire::firstChoiceContent(document);
    const auto text = content ? readContent(*content) : std::nullopt;
    if (!text)
        throw PollinationsError::parseError(QStringLiteral("Invalid GLM response format"));
    return *text;
}

}  // namespace tavrelon::generation::chat_glm
