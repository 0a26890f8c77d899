#pragma once

#include <optional>

#include "text/json.h"

namespace tavrelon::scenes {

/// Writes an optional field, which is left out when absent.
inline void putIfPresent(text::Json& json, const char* key, const std::optional<QString>& value) {
    if (value)
        json[key] = text::toJson(*value);
}

}  // namespace tavrelon::scenes
