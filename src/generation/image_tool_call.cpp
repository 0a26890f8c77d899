#include "generation/image_tool_call.h"

#include <initializer_list>

#include "text/characters.h"
#include "text/json_size.h"
#include "text/tolerant_json.h"

namespace tavrelon::generation {

using text::Json;
using namespace Qt::StringLiterals;

namespace {

bool isImageToolName(const QString& name) {
    const auto lower = name.toLower();
    return lower.contains("text2im"_L1) || lower.contains("dalle"_L1) || lower == "image"_L1 || lower == "draw"_L1;
}

std::optional<QString> promptOfObject(const Json& object) {
    return text::firstText(object, {"prompt", "text", "query"});
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
    const auto name = text::firstText(*call, {"action", "tool", "name"});
    if (!name || !isImageToolName(*name))
        return std::nullopt;
    const auto* input = toolInput(*call);
    if (auto prompt = input ? extractToolPrompt(*input) : std::nullopt)
        return prompt;
    const auto* prompt = text::find(*call, "prompt");
    return prompt ? extractToolPrompt(*prompt) : std::nullopt;
}

}  // namespace tavrelon::generation
