#include "scenes/output_contract.h"

#include "scenes/json_fields.h"

namespace tavrelon::scenes {

namespace {

std::optional<QStringList> optionalStringList(const text::Json& json, const char* key) {
    if (const auto* value = text::find(json, key))
        return stringListFrom(*value);
    return std::nullopt;
}

std::optional<LengthRange> lengthRangeFrom(const text::Json& json) {
    const auto* lower = text::find(json, "lengthMin");
    const auto* upper = lower ? text::find(json, "lengthMax") : nullptr;
    if (!upper)
        return std::nullopt;
    const LengthRange range{text::integerFrom(*lower), text::integerFrom(*upper)};
    // No such range can exist. The file is the user's own, so it is reported as faulty like any other mistake in it
    // instead of stopping the program at every start.
    if (range.upper < range.lower)
        throw text::JsonError(
            QStringLiteral("\"lengthMax\" (%1) is smaller than \"lengthMin\" (%2).").arg(range.upper).arg(range.lower));
    return range;
}

}  // namespace

text::Json toJson(const QStringList& texts) {
    auto json = text::Json::array();
    for (const auto& each : texts)
        json.push_back(text::toJson(each));
    return json;
}

QStringList stringListFrom(const text::Json& json) {
    QStringList texts;
    for (const auto& each : text::arrayFrom(json))
        texts.push_back(text::stringFrom(each));
    return texts;
}

text::Json toJson(const OutputContract& contract) {
    auto json = text::Json::object();
    if (contract.requiredFields)
        json["requiredFields"] = toJson(*contract.requiredFields);
    if (contract.prohibitedTerms)
        json["prohibitedTerms"] = toJson(*contract.prohibitedTerms);
    putIfPresent(json, "tone", contract.tone);
    putIfPresent(json, "format", contract.format);
    if (contract.lengthRange) {
        json["lengthMin"] = contract.lengthRange->lower;
        json["lengthMax"] = contract.lengthRange->upper;
    }
    return json;
}

OutputContract outputContractFrom(const text::Json& json) {
    OutputContract contract;
    contract.requiredFields = optionalStringList(json, "requiredFields");
    contract.prohibitedTerms = optionalStringList(json, "prohibitedTerms");
    contract.tone = text::optionalString(json, "tone");
    contract.format = text::optionalString(json, "format");
    contract.lengthRange = lengthRangeFrom(json);
    return contract;
}

}  // namespace tavrelon::scenes
