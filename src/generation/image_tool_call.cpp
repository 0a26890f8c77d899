#include "generation/image_tool_call.h"

#include <initializer_list>

#include "text/characters.h"
#include "text/json_size.h"
#include "text/tolerant_json.h"

namespace tavrelon::generation {

using text::Json;
using namespace Qt::StringLiterals;

namespace {

/// The first of the keys whose value is a text with something in it.
std::optional<QString> firstText(const Json& object, std::initializer_list<const char*> keys) {
    for (const char* key : keys) {
        const auto* value = text::find(object, key);
        if (value && value->is_string() && !text::isBlank(text::stringFrom(*value)))
            return text::stringFrom(*value);
    }
    return std::nullopt;
}

bool isImageToolName(const QString& name) {
    const auto lower = name.toLower();
    return lower.contains("text2im"_L1) || lower.contains("dalle"_L1) || lower == "image"_L1 || lower == "draw"_L1;
}

std::optional<QString> promptOfObject(const Json& object) {
    const auto found = firstText(object, {"prompt", "text", "query"});
    return found ? text::trimmedOrAbsent(*found) : std::nullopt;
}

std::optional<QString> extractToolPrompt(const Json& value) {
    if (value.is_object())
        return promptOfObject(value);
    if (!value.is_string())
        return std::nullopt;
    const auto& written = value.get_ref<const std::string&>();
    const auto object = text::isOpenableJson(written) ? Json::parse(written, nullptr, false) : Json();
    return object.is_object() ? promptOfObject(object) : text::trimmedOrAbsent(text::stringFrom(value));
}

/// The value of the first key that exists, whatever its type; null when none does.
const Json* toolInput(const Json& call) {
    for (const char* key : {"action_input", "actionInput", "input", "arguments"}) {
        if (const auto found = call.find(key); found != call.end())
            return &*found;
    }
    return nullptr;
}

}  // namespace

std::optional<QString> parseImageToolCall(const QString& reply) {
    const auto call = text::parseJSONObject(reply);
    if (!call)
        return std::nullopt;
    const auto name = firstText(*call, {"action", "tool", "name"});
    if (!name || !isImageToolName(*name))
        return std::nullopt;
    const auto* input = toolInput(*call);
    if (auto prompt = input ? extractToolPrompt(*input) : std::nullopt)
        return prompt;
    const auto* prompt = text::find(*call, "prompt");
    return prompt ? extractToolPrompt(*prompt) : std::nullopt;
}

}  // namespace tavrelon::generation
