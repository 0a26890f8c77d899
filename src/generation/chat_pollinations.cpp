#include "generation/chat_pollinations.h"

#include "generation/chat_wire.h"
#include "generation/pollinations_error.h"
#include "scenes/json_fields.h"

namespace tavrelon::generation::chat_pollinations {

using text::Json;

namespace {

Json userContent(const Call& call, chat_wire::Pictures& pictures) {
    const auto& prompt = call.prompt;
    if (!prompt.image || call.imageCapable == ImageCapability::No)
        return text::toJson(prompt.user);
    auto image = pictures.part(*prompt.image);
    image["image_url"]["detail"] = "auto";
    return Json::array({chat_wire::textPart(prompt.user), std::move(image)});
}

}  // namespace

platform::HttpRequest buildRequest(const Call& call) {
    const auto url = chat_wire::formUrl(call.baseURL + genChatCompletionsPath);
    if (!url)
        throw PollinationsError::invalidURL();
    chat_wire::Pictures pictures;
    Json body = {
        {"model", text::toJson(call.model)},
        {"messages", Json::array({chat_wire::message("system", text::toJson(call.prompt.system)),
                                  chat_wire::message("user", userContent(call, pictures))})},
        {"max_tokens", call.prompt.maxTokens},
        {"temperature", scenes::shortestDecimal(call.prompt.temperature)},
    };
    if (call.jsonMode == JsonMode::On)
        body["response_format"] = {{"type", "json_object"}};
    return chat_wire::jsonPost(*url, call.key, body, pictures);
}

QString readResponse(const platform::HttpResponse& response) {
    const auto document = chat_wire::document(response);
    const auto* content = chat_wire::firstChoiceContent(document);
    if (!content || !content->is_string())
        throw PollinationsError::parseError(QStringLiteral("Invalid response format"));
    return text::stringFrom(*content);
}

}  // namespace tavrelon::generation::chat_pollinations
