#pragma once

#include "text/json.h"

namespace tavrelon::scenes {

/// Whether an answer may leave the user's machine again.
struct SafetyFlags {
    bool containsSensitive = false;
    bool shareAllowed = false;

    bool operator==(const SafetyFlags&) const = default;
};

inline text::Json toJson(const SafetyFlags& flags) {
    return {{"containsSensitive", flags.containsSensitive}, {"shareAllowed", flags.shareAllowed}};
}

/// Throws `text::JsonError`; both keys are required.
inline SafetyFlags safetyFlagsFrom(const text::Json& json) {
    return {text::boolFrom(text::required(json, "containsSensitive")),
            text::boolFrom(text::required(json, "shareAllowed"))};
}

}  // namespace tavrelon::scenes
