#include "learning/learner_state.h"

namespace tavrelon::learning {

text::Json toJson(const LearnerState& state) {
    auto samples = text::Json::array();
    for (const auto& sample : state.pendingInputs)
        samples.push_back(text::toJson(sample));
    auto json = text::Json::object();
    json["pendingInputs"] = std::move(samples);
    if (state.lastUpdatedAt)
        json["lastUpdatedAt"] = text::secondsSinceReferenceDate(*state.lastUpdatedAt);
    return json;
}

LearnerState learnerStateFrom(const text::Json& json) {
    LearnerState state;
    for (const auto& sample : text::arrayFrom(text::required(json, "pendingInputs")))
        state.pendingInputs.push_back(text::stringFrom(sample));
    if (const auto* date = text::find(json, "lastUpdatedAt"))
        state.lastUpdatedAt = text::dateFrom(*date);
    return state;
}

}  // namespace tavrelon::learning
