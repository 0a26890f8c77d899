#include "persistence/history_entry.h"

namespace tavrelon::persistence {

text::Json toJson(const HistoryEntry& entry) {
    auto json = text::Json::object();
    const auto putIfPresent = [&json](const char* key, const std::optional<QString>& value) {
        if (value)
            json[key] = text::toJson(*value);
    };
    json["id"] = text::toJson(text::uuidText(entry.id));
    json["timestamp"] = text::secondsSinceReferenceDate(entry.timestamp);
    putIfPresent("sceneID", entry.sceneID);
    putIfPresent("sceneName", entry.sceneName);
    putIfPresent("intent", entry.intent);
    putIfPresent("appBundleID", entry.appBundleID);
    putIfPresent("appName", entry.appName);
    putIfPresent("windowTitle", entry.windowTitle);
    json["inputText"] = text::toJson(entry.inputText);
    json["outputText"] = text::toJson(entry.outputText);
    putIfPresent("outputImagePath", entry.outputImagePath);
    json["wasReverted"] = entry.wasReverted;
    json["wasEdited"] = entry.wasEdited;
    putIfPresent("editedText", entry.editedText);
    json["retryCount"] = entry.retryCount;
    return json;
}

text::Json toJson(const std::vector<HistoryEntry>& entries) {
    auto json = text::Json::array();
    for (const auto& entry : entries)
        json.push_back(toJson(entry));
    return json;
}

HistoryEntry historyEntryFrom(const text::Json& json) {
    const auto field = [&](const char* key) -> const text::Json& { return text::required(json, key); };
    HistoryEntry entry;
    entry.id = text::uuidFrom(field("id"));
    entry.timestamp = text::dateFrom(field("timestamp"));
    entry.sceneID = text::optionalString(json, "sceneID");
    entry.sceneName = text::optionalString(json, "sceneName");
    entry.intent = text::optionalString(json, "intent");
    entry.appBundleID = text::optionalString(json, "appBundleID");
    entry.appName = text::optionalString(json, "appName");
    entry.windowTitle = text::optionalString(json, "windowTitle");
    entry.inputText = text::stringFrom(field("inputText"));
    entry.outputText = text::stringFrom(field("outputText"));
    entry.outputImagePath = text::optionalString(json, "outputImagePath");
    entry.wasReverted = text::boolFrom(field("wasReverted"));
    entry.wasEdited = text::boolFrom(field("wasEdited"));
    entry.editedText = text::optionalString(json, "editedText");
    entry.retryCount = text::integerFrom(field("retryCount"));
    return entry;
}

std::vector<HistoryEntry> historyEntriesFrom(const text::Json& json) {
    std::vector<HistoryEntry> entries;
    for (const auto& entry : text::arrayFrom(json))
        entries.push_back(historyEntryFrom(entry));
    return entries;
}

}  // namespace tavrelon::persistence
