#include "generation/chat_nvidia.h"

#include "generation/chat_wire.h"
#include "generation/pollinations_error.h"
#include "scenes/json_fields.h"
#include "text/characters.h"

namespace tavrelon::generation::chat_nvidia {

using text::Json;
using namespace Qt::StringLiterals;

namespace {

constexpr auto noThink = "/no_think"_L1;
constexpr auto think = "/think"_L1;

/// The directive at the head of the prompt. A prefix test only: "/thinking" counts.
std::optional<QLatin1StringView> leadingDirective(const QString& prompt) {
    const auto lower = prompt.toLower();
    for (const auto directive : {noThink, think}) {
        if (lower.startsWith(directive))
            return directive;
    }
    return std::nullopt;
}

QString under(QLatin1StringView directive, const QString& prompt) {
    return prompt.isEmpty() ? QString(directive) : directive + u'\n' + prompt;
}

std::vector<QByteArray> imagesOf(const Call& call) {
    if (call.images)
        return *call.images;
    if (call.prompt.image)
        return {*call.prompt.image};
    return {};
}

bool takesImages(PollinationsModel model) {
    return model == PollinationsModel::openai || model == PollinationsModel::gemini ||
           model == PollinationsModel::nvidiaNemotron || model == PollinationsModel::glmVision ||
           model == PollinationsModel::glmVisionFlash;
}

Json userContent(const Call& call, chat_wire::Pictures& pictures) {
    const auto text = text::trimmedOrAbsent(call.prompt.user).value_or(u"Describe the visual content."_s);
    const auto images = imagesOf(call);
    if (images.empty() || !takesImages(call.model))
        return text::toJson(text);
    auto parts = Json::array({chat_wire::textPart(text)});
    for (const auto& image : images)
        parts.push_back(pictures.part(image));
    return parts;
}

}  // namespace

QString applyThinkDirective(const QString& systemPrompt, Thinking thinking, bool thinkEnabled) {
    auto prompt = text::trimmed(systemPrompt);
    const auto written = leadingDirective(prompt);
    if (thinking == Thinking::ForcedOff)
        return under(noThink, written ? text::trimmed(prompt.sliced(written->size())) : prompt);
    if (written)
        return prompt;
    return under(thinkEnabled ? think : noThink, prompt);
}

platform::HttpRequest buildRequest(const Call& call) {
    if (!call.key || call.key->isEmpty())
        throw PollinationsError::apiError(401, {u"NVIDIA API key not configured"_s, u"未配置 NVIDIA API 密钥"_s});
    const auto url = chat_wire::formUrl(call.url);
    if (!url)
        throw PollinationsError::invalidURL();
    const auto system = applyThinkDirective(call.prompt.system, call.thinking, call.thinkEnabled);
    chat_wire::Pictures pictures;
    Json body = {
        {"model", text::toJson(identifier(call.model))},
        {"messages", Json::array({chat_wire::message("system", text::toJson(system)),
                                  chat_wire::message("user", userContent(call, pictures))})},
        {"stream", false},
        {"temperature", scenes::shortestDecimal(call.prompt.temperature)},
        {"top_p", 1},
    };
    if (call.prompt.maxTokens >= 1)
        body["max_tokens"] = call.prompt.maxTokens;
    auto request = chat_wire::jsonPost(*url, call.key, body, pictures);
    request.headers.emplace_back("Accept", "application/json");
    return request;
}

QString readResponse(const platform::HttpResponse& response) {
    const auto document = chat_wire::document(response);
    const auto* content = chat_wire::firstChoiceContent(document);
    if (!content || !content->is_string())
        throw PollinationsError::parseError(u"Invalid NVIDIA response format"_s);
    return text::stringFrom(*content);
}

}  // namespace tavrelon::generation::chat_nvidia
