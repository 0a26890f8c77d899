#pragma once

#include "scenes/raw_values.h"

namespace tavrelon::scenes {

/// How an answer takes the place of what the user typed.
struct ReplacementStrategy {
    enum class Method {
        replaceSelection,    ///< set the selected text, else paste
        replaceComposition,  ///< cancel the input method's composition, then paste
        deleteChars          ///< send `deleteCharCount` Backspace keys, then paste
    };

    Method method = Method::deleteChars;
    std::optional<qint64> deleteCharCount = {};

    bool operator==(const ReplacementStrategy&) const = default;
};

template <>
inline constexpr std::array rawValues<ReplacementStrategy::Method>{
    RawValue{ReplacementStrategy::Method::replaceSelection, "replaceSelection"},
    RawValue{ReplacementStrategy::Method::replaceComposition, "replaceComposition"},
    RawValue{ReplacementStrategy::Method::deleteChars, "deleteChars"},
};

text::Json toJson(const ReplacementStrategy& strategy);

/// Throws `text::JsonError`.
ReplacementStrategy replacementStrategyFrom(const text::Json& json);

}  // namespace tavrelon::scenes
