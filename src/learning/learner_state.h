#pragma once

#include <QString>
#include <chrono>
#include <deque>
#include <optional>

#include "text/json.h"

namespace tavrelon::learning {

/// What the learner keeps between two runs of the program.
struct LearnerState {
    std::deque<QString> pendingInputs;                                        ///< cleaned samples, oldest first
    std::optional<std::chrono::system_clock::time_point> lastUpdatedAt = {};  ///< the end of the last good update

    bool operator==(const LearnerState&) const = default;
};

/// An absent date is left out.
text::Json toJson(const LearnerState& state);

/// Throws `text::JsonError` when `pendingInputs` is missing or a value is of another type.
LearnerState learnerStateFrom(const text::Json& json);

}  // namespace tavrelon::learning
