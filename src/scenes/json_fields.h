#pragma once

#include <array>
#include <charconv>
#include <optional>

#include "text/json.h"

namespace tavrelon::scenes {

/// Writes an optional field, which is left out when absent.
inline void putIfPresent(text::Json& json, const char* key, const std::optional<QString>& value) {
    if (value)
        json[key] = text::toJson(*value);
}

/// The double that prints as the shortest decimal that means this float: 0.6, not 0.600000024.
inline double shortestDecimal(float value) {
    std::array<char, 32> digits;
    const auto written = std::to_chars(digits.begin(), digits.end(), value);
    return QByteArrayView(digits.data(), written.ptr).toDouble();
}

}  // namespace tavrelon::scenes
