#include "scenes/decision_object.h"

#include <cmath>

#include "scenes/json_fields.h"

namespace tavrelon::scenes {

namespace {

float floatFrom(const text::Json& json) {
    const auto value = static_cast<float>(text::doubleFrom(json));
    if (!std::isfinite(value))
        throw text::JsonError(QStringLiteral("The number does not fit in 32 bits."));
    return value;
}

}  // namespace

text::Json toJson(const DecisionObject& decision) {
    text::Json json{{"id", text::toJson(text::uuidText(decision.id))},
                    {"sceneID", text::toJson(decision.sceneID)},
                    {"sceneConfidence", shortestDecimal(decision.sceneConfidence)},
                    {"intent", text::toJson(decision.intent)},
                    {"intentConfidence", shortestDecimal(decision.intentConfidence)},
                    {"needsScreenshot", decision.needsScreenshot},
                    {"outputType", text::toJson(rawValue(decision.outputType))}};
    putIfPresent(json, "templateID", decision.templateID);
    json["style"] = toJson(decision.style);
    json["replacementStrategy"] = toJson(decision.replacementStrategy);
    json["safety"] = toJson(decision.safety);
    json["result"] = toJson(decision.result);
    putIfPresent(json, "fallback", decision.fallback);
    return json;
}

DecisionObject decisionObjectFrom(const text::Json& json) {
    const auto field = [&](const char* key) -> const text::Json& { return text::required(json, key); };
    DecisionObject decision;
    decision.id = text::uuidFrom(field("id"));
    decision.sceneID = text::stringFrom(field("sceneID"));
    decision.sceneConfidence = floatFrom(field("sceneConfidence"));
    decision.intent = text::stringFrom(field("intent"));
    decision.intentConfidence = floatFrom(field("intentConfidence"));
    decision.needsScreenshot = text::boolFrom(field("needsScreenshot"));
    decision.outputType = caseFrom<OutputType>(field("outputType"));
    decision.templateID = text::optionalString(json, "templateID");
    decision.style = styleParametersFrom(field("style"));
    decision.replacementStrategy = replacementStrategyFrom(field("replacementStrategy"));
    decision.safety = safetyFlagsFrom(field("safety"));
    decision.result = resultContentFrom(field("result"));
    decision.fallback = text::optionalString(json, "fallback");
    return decision;
}

}  // namespace tavrelon::scenes
