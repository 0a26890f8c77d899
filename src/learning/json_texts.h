#pragma once

#include <initializer_list>
#include <optional>

#include "text/characters.h"
#include "text/json.h"

namespace tavrelon::learning {

/// The first of the keys' values that is a text with something in it, trimmed. `json` is an object.
inline std::optional<QString> firstText(const text::Json& json, std::initializer_list<const char*> keys) {
    for (const char* key : keys)
        if (const auto* value = text::find(json, key); value && value->is_string())
            if (auto found = text::trimmedOrAbsent(text::stringFrom(*value)))
                return found;
    return std::nullopt;
}

}  // namespace tavrelon::learning
