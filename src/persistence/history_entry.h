#pragma once

#include <QString>
#include <QUuid>
#include <chrono>
#include <optional>
#include <vector>

#include "text/json.h"

namespace tavrelon::persistence {

/// One request of the user and its answer. Identified by `id`; only the last four fields may change after its making.
struct HistoryEntry {
    QUuid id = {};
    std::chrono::system_clock::time_point timestamp = {};
    std::optional<QString> sceneID = {};
    std::optional<QString> sceneName = {};
    std::optional<QString> intent = {};
    std::optional<QString> appBundleID = {};
    std::optional<QString> appName = {};
    std::optional<QString> windowTitle = {};
    QString inputText = {};
    QString outputText = {};
    std::optional<QString> outputImagePath = {};  ///< relative to the history's folder
    bool wasReverted = false;
    bool wasEdited = false;
    std::optional<QString> editedText = {};
    qint64 retryCount = 0;

    bool operator==(const HistoryEntry&) const = default;
};

/// Absent fields are left out.
text::Json toJson(const HistoryEntry& entry);
text::Json toJson(const std::vector<HistoryEntry>& entries);

/// Both throw `text::JsonError` for a missing required key or a value of another type; one faulty entry fails the list.
HistoryEntry historyEntryFrom(const text::Json& json);
std::vector<HistoryEntry> historyEntriesFrom(const text::Json& json);

}  // namespace tavrelon::persistence
