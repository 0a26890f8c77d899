#include "generation/chat_ollama.h"

#include <algorithm>

#include "generation/chat_wire.h"
#include "generation/error_text.h"
#include "text/characters.h"

namespace tavrelon::generation::chat_ollama {

using text::Json;
using namespace Qt::StringLiterals;

namespace {

bool missing(const std::optional<QString>& value) {
    return !value || value->isEmpty();
}

void check(const Call& call) {
    if (missing(call.model))
        throw PollinationsError::configurationMissing(
            call.mode == OllamaMode::cloud
                ? text::LocalizedText(u"Ollama cloud model is required"_s, u"需要 Ollama 云端模型"_s)
                : text::LocalizedText(u"Ollama local model is required"_s, u"需要 Ollama 本地模型"_s));
    if (call.mode == OllamaMode::cloud && missing(call.key))
        throw PollinationsError::configurationMissing(
            {u"Ollama cloud API key is required"_s, u"需要 Ollama 云端 API 密钥"_s});
}

Json messages(const Call& call, chat_wire::Pictures& pictures) {
    auto list = Json::array();
    if (!call.systemPrompt.isEmpty())
        list.push_back(chat_wire::message("system", text::toJson(call.systemPrompt)));
    auto user = chat_wire::message("user", text::toJson(call.userPrompt));
    for (const auto& image : call.images)
        user["images"].push_back(pictures.base64(image));
    list.push_back(std::move(user));
    return list;
}

const Json* textUnder(const Json& object, const char* key) {
    const auto* value = text::find(object, key);
    return value && value->is_string() ? value : nullptr;
}

template <typename Test>
const Json* arrayUnder(const Json& object, const char* key, Test everyElement) {
    const auto* value = text::find(object, key);
    return value && value->is_array() && std::ranges::all_of(*value, everyElement) ? value : nullptr;
}

/// The names from the first form that fits: objects under "models", objects under "tags", texts under "models".
QStringList listedNames(const Json& document) {
    QStringList names;
    for (const char* key : {"models", "tags"}) {
        if (const auto* list = arrayUnder(document, key, [](const Json& one) { return one.is_object(); })) {
            for (const auto& entry : *list) {
                if (const auto* name = textUnder(entry, "name"))
                    names.push_back(text::stringFrom(*name));
            }
            return names;
        }
    }
    if (const auto* list = arrayUnder(document, "models", [](const Json& one) { return one.is_string(); })) {
        for (const auto& name : *list)
            names.push_back(text::stringFrom(name));
    }
    return names;
}

}  // namespace

platform::HttpRequest buildRequest(const Call& call) {
    check(call);
    const auto url = chat_wire::formUrl(call.url);
    if (!url)
        throw PollinationsError::invalidURL();
    chat_wire::Pictures pictures;
    const Json body = {
        {"model", text::toJson(*call.model)},
        {"messages", messages(call, pictures)},
        {"stream", false},
    };
    return chat_wire::jsonPost(*url, call.key, body, pictures);
}

QString readResponse(const platform::HttpResponse& response) {
    const auto document = chat_wire::document(response);
    if (document.is_object()) {
        const auto* message = text::find(document, "message");
        if (const auto* content = message && message->is_object() ? textUnder(*message, "content") : nullptr)
            return text::stringFrom(*content);
        if (const auto* reply = textUnder(document, "response"))
            return text::stringFrom(*reply);
        if (const auto* error = textUnder(document, "error"))
            throw PollinationsError::apiError(response.status, error_text::oneLine(text::stringFrom(*error)));
    }
    throw PollinationsError::parseError(u"Invalid Ollama response format"_s);
}

QStringList readModelList(const platform::HttpResponse& response) {
    const auto document = chat_wire::document(response);
    if (!document.is_object())
        throw PollinationsError::parseError(u"Invalid Ollama model list response"_s);
    QStringList names;
    for (const auto& name : listedNames(document)) {
        if (const auto kept = text::trimmedOrAbsent(name))
            names.push_back(*kept);
    }
    if (names.isEmpty())
        throw PollinationsError::parseError(u"No Ollama models found"_s);
    names.removeDuplicates();
    names.sort();
    return names;
}

}  // namespace tavrelon::generation::chat_ollama
