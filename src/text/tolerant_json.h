#pragma once

#include <QString>
#include <optional>

#include "text/json.h"

namespace tavrelon::text {

/// Finds the JSON object in a model's reply. Candidates, in order: the reply; the content of its first fenced block,
/// without a leading "json"; the span from the first "{" to the last "}". A JSON text that holds an object is opened.
/// Absent when no candidate gives an object.
std::optional<Json> parseJSONObject(const QString& reply);

}  // namespace tavrelon::text
