#pragma once

#include <QStringList>
#include <optional>

#include "text/json.h"

namespace tavrelon::scenes {

/// A range of integers, both ends included; `lower` is never above `upper`.
struct LengthRange {
    qint64 lower = 0;
    qint64 upper = 0;
    bool operator==(const LengthRange&) const = default;
};

/// The form that a scene's output must take. An absent field asks for nothing.
struct OutputContract {
    std::optional<QStringList> requiredFields = {};   ///< parts that the output must contain
    std::optional<QStringList> prohibitedTerms = {};  ///< terms that it must avoid
    std::optional<LengthRange> lengthRange = {};      ///< in characters
    std::optional<QString> tone = {};
    std::optional<QString> format = {};

    bool operator==(const OutputContract&) const = default;
};

/// The range is carried by the keys "lengthMin" and "lengthMax".
text::Json toJson(const OutputContract& contract);

/// Every key is optional; one end of the range without the other counts as no range. Throws `text::JsonError` for a
/// value of another type and for a range that ends before it starts.
OutputContract outputContractFrom(const text::Json& json);

text::Json toJson(const QStringList& texts);

/// Throws `text::JsonError` unless `json` is an array of strings.
QStringList stringListFrom(const text::Json& json);

}  // namespace tavrelon::scenes
