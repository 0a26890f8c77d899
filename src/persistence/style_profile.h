#pragma once

#include "persistence/history_entry.h"

namespace tavrelon::persistence {

/// How the user writes: four or five lines of English for a system prompt, computed from the user's own inputs in the
/// newest `limit` entries (0 or more) that are not blank. Absent when there is none.
std::optional<QString> userStyleProfile(const std::vector<HistoryEntry>& newestFirst, qint64 limit);

}  // namespace tavrelon::persistence
