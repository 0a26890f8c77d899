#pragma once

#include <QString>
#include <optional>

namespace tavrelon::generation {

/// The prompt of a reply that is really a call of a drawing tool, as agent-style models write it; absent for any other
/// reply.
std::optional<QString> parseImageToolCall(const QString& reply);

}  // namespace tavrelon::generation
