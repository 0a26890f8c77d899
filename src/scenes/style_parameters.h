#pragma once

#include <optional>

#include "scenes/output_contract.h"

namespace tavrelon::scenes {

/// In which style an answer was asked for; by default in none in particular.
struct StyleParameters {
    std::optional<QString> tone = {};
    std::optional<QString> length = {};  ///< "short", "medium" or "long"
    std::optional<QString> format = {};
    std::optional<QString> language = {};

    bool operator==(const StyleParameters&) const = default;
};

/// The style that a scene's contract asks for; the empty style without a contract.
StyleParameters resolvedStyle(const std::optional<OutputContract>& contract);

text::Json toJson(const StyleParameters& style);

/// Throws `text::JsonError`.
StyleParameters styleParametersFrom(const text::Json& json);

}  // namespace tavrelon::scenes
