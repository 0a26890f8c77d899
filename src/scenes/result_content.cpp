#include "scenes/result_content.h"

#include <algorithm>

#include "scenes/json_fields.h"

namespace tavrelon::scenes {

namespace {

/// The keys of the alternatives of `ResultContent`, in their order.
constexpr std::array contentKeys{"text", "image", "structured"};
constexpr const char* payloadKey = "_0";

text::Json payloadJson(const QString& payload) {
    return text::toJson(payload);
}

text::Json payloadJson(const ImageSpec& payload) {
    return toJson(payload);
}

text::Json payloadJson(const StructuredContent& payload) {
    auto json = text::Json::object();
    for (const auto& [key, value] : payload)
        json[key.toStdString()] = text::toJson(value);
    return json;
}

StructuredContent structuredFrom(const text::Json& json) {
    StructuredContent content;
    for (const auto& [key, value] : text::objectFrom(json))
        content[QString::fromStdString(key)] = text::stringFrom(value);
    return content;
}

}  // namespace

text::Json toJson(const ImageSpec& spec) {
    text::Json json{{"prompt", text::toJson(spec.prompt)}, {"size", text::toJson(rawValue(spec.size))}};
    putIfPresent(json, "style", spec.style);
    putIfPresent(json, "negativePrompt", spec.negativePrompt);
    return json;
}

ImageSpec imageSpecFrom(const text::Json& json) {
    return {text::stringFrom(text::required(json, "prompt")), caseFrom<ImageSize>(text::required(json, "size")),
            text::optionalString(json, "style"), text::optionalString(json, "negativePrompt")};
}

text::Json toJson(const ResultContent& content) {
    auto payload = text::Json::object();
    payload[payloadKey] = std::visit([](const auto& alternative) { return payloadJson(alternative); }, content);
    auto json = text::Json::object();
    json[contentKeys.at(content.index())] = std::move(payload);
    return json;
}

ResultContent resultContentFrom(const text::Json& json) {
    const auto& object = text::objectFrom(json);
    const auto isPresent = [&](const char* key) { return object.find(key) != object.end(); };
    if (std::ranges::count_if(contentKeys, isPresent) != 1)
        throw text::JsonError(QStringLiteral("Invalid number of keys found, expected one."));
    const auto* key = *std::ranges::find_if(contentKeys, isPresent);
    const auto& payload = text::required(text::required(json, key), payloadKey);
    if (key == contentKeys[0])
        return text::stringFrom(payload);
    if (key == contentKeys[1])
        return imageSpecFrom(payload);
    return structuredFrom(payload);
}

}  // namespace tavrelon::scenes
