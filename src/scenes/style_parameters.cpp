#include "scenes/style_parameters.h"

#include "scenes/json_fields.h"

namespace tavrelon::scenes {

namespace {

QString lengthWord(const LengthRange& range) {
    if (range.upper < 81)
        return QStringLiteral("short");
    return range.upper < 201 ? QStringLiteral("medium") : QStringLiteral("long");
}

}  // namespace

StyleParameters resolvedStyle(const std::optional<OutputContract>& contract) {
    StyleParameters style;
    if (!contract)
        return style;
    style.tone = contract->tone;
    style.length = contract->lengthRange.transform(lengthWord);
    style.format = contract->format;
    return style;
}

text::Json toJson(const StyleParameters& style) {
    auto json = text::Json::object();
    putIfPresent(json, "tone", style.tone);
    putIfPresent(json, "length", style.length);
    putIfPresent(json, "format", style.format);
    putIfPresent(json, "language", style.language);
    return json;
}

StyleParameters styleParametersFrom(const text::Json& json) {
    return {text::optionalString(json, "tone"), text::optionalString(json, "length"),
            text::optionalString(json, "format"), text::optionalString(json, "language")};
}

}  // namespace tavrelon::scenes
