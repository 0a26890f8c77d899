#include "scenes/replacement_strategy.h"

namespace tavrelon::scenes {

text::Json toJson(const ReplacementStrategy& strategy) {
    text::Json json{{"method", text::toJson(rawValue(strategy.method))}};
    if (strategy.deleteCharCount)
        json["deleteCharCount"] = *strategy.deleteCharCount;
    return json;
}

ReplacementStrategy replacementStrategyFrom(const text::Json& json) {
    ReplacementStrategy strategy;
    strategy.method = caseFrom<ReplacementStrategy::Method>(text::required(json, "method"));
    if (const auto* count = text::find(json, "deleteCharCount"))
        strategy.deleteCharCount = text::integerFrom(*count);
    return strategy;
}

}  // namespace tavrelon::scenes
