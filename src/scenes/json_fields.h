#pragma once

#include <array>
#include <charconv>
#include <optional>

#include "text/json.h"

namespace tavrelon::scenes {

/// What `from` makes of the value of a key; an error says which key has the fault.
template <typename From>
auto readNamed(const char* key, const text::Json& value, From from) {
    try {
        return from(value);
    } catch (const text::JsonError& error) {
        throw text::JsonError(QStringLiteral("\"%1\": ").arg(QLatin1StringView(key)) + error.localizedDescription());
    }
}

template <typename From>
auto readRequired(const text::Json& json, const char* key, From from) {
    return readNamed(key, text::required(json, key), from);
}

/// Absent where the key is missing or its value is null.
template <typename From>
auto readOptional(const text::Json& json, const char* key, From from) {
    const auto* value = text::find(json, key);
    return value ? std::optional(readNamed(key, *value, from)) : std::nullopt;
}

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
