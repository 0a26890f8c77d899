#pragma once

#include <array>
#include <optional>

#include "text/json.h"

namespace tavrelon::scenes {

template <typename Case>
struct RawValue {
    Case value;
    const char* raw;
};

/// The cases of an enumeration in their order, each with the text that stands for it in JSON. An enumeration joins the
/// functions below by specialising this table.
template <typename Case>
inline constexpr std::array<RawValue<Case>, 0> rawValues{};

template <typename Case>
QString rawValue(Case value) {
    for (const auto& row : rawValues<Case>)
        if (row.value == value)
            return QString::fromLatin1(row.raw);
    return {};
}

/// Absent when no case has this text; the comparison is exact.
template <typename Case>
std::optional<Case> caseOf(const QString& raw) {
    for (const auto& row : rawValues<Case>)
        if (raw == QLatin1StringView(row.raw))
            return row.value;
    return std::nullopt;
}

/// Throws `text::JsonError` for another type and for a text that stands for no case.
template <typename Case>
Case caseFrom(const text::Json& json) {
    const auto raw = text::stringFrom(json);
    if (const auto found = caseOf<Case>(raw))
        return *found;
    throw text::JsonError(QStringLiteral("\"%1\" is none of the values that are allowed here.").arg(raw));
}

}  // namespace tavrelon::scenes
