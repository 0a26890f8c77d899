#include "scenes/output_contract.h"

#include "scenes/json_fields.h"

namespace tavrelon::scenes {

namespace {

std::optional<LengthRange> lengthRangeFrom(const text::Json& json) {
    const auto lower = readOptional(json, "lengthMin", text::integerFrom);
    const auto upper = lower ? readOptional(json, "lengthMax", text::integerFrom) : std::nullopt;
    if (!upper)
        return std::nullopt;
    const LengthRange range{*lower, *upper};
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
    contract.requiredFields = readOptional(json, "requiredFields", stringListFrom);
    contract.prohibitedTerms = readOptional(json, "prohibitedTerms", stringListFrom);
    contract.tone = readOptional(json, "tone", text::stringFrom);
    contract.format = readOptional(json, "format", text::stringFrom);
    contract.lengthRange = lengthRangeFrom(json);
    return contract;
}

}  // namespace tavrelon::scenes
