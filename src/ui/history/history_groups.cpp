#include "ui/history/history_groups.h"

#include <algorithm>
#include <ranges>

namespace tavrelon::ui {

using persistence::HistoryEntry;

namespace {

bool isGiven(const std::optional<QString>& text) {
    return text && !text->isEmpty();
}

QString groupKey(const HistoryEntry& entry) {
    if (isGiven(entry.appBundleID))
        return *entry.appBundleID;
    return isGiven(entry.appName) ? *entry.appName : QStringLiteral("unknown");
}

}  // namespace

std::vector<AppHistoryGroup> groupedByApplication(const std::vector<HistoryEntry>& entries) {
    std::vector<AppHistoryGroup> groups;
    for (const auto& entry : std::views::reverse(entries)) {
        const auto key = groupKey(entry);
        auto group = std::ranges::find(groups, key, &AppHistoryGroup::id);
        if (group == groups.end())
            group = groups.insert(groups.end(), {.id = key, .displayName = key, .entries = {}});
        if (isGiven(entry.appName))
            group->displayName = *entry.appName;
        const auto place = std::ranges::upper_bound(group->entries, entry.timestamp, {}, &HistoryEntry::timestamp);
        group->entries.insert(place, entry);
    }
    std::vector<AppHistoryGroup> sorted;
    const auto latest = [](const AppHistoryGroup& group) { return group.latest().timestamp; };
    for (auto& group : groups)
        sorted.insert(std::ranges::lower_bound(sorted, latest(group), std::ranges::greater(), latest),
                      std::move(group));
    return sorted;
}

QString HistorySearch::folded(const QString& text) const {
    return locale_.toLower(text.normalized(QString::NormalizationForm_C));
}

QStringList HistorySearch::foldedTexts(const HistoryEntry& entry) const {
    QStringList texts{folded(entry.inputText), folded(entry.outputText)};
    for (const auto* optional : {&entry.sceneName, &entry.appName, &entry.windowTitle})
        if (*optional)
            texts << folded(**optional);
    return texts;
}

std::vector<HistoryEntry> HistorySearch::matching(const std::vector<HistoryEntry>& entries, const QString& searchText,
                                                  const QString& intent) {
    if (!searchText.isEmpty() && folded_.empty())
        std::ranges::transform(entries, std::back_inserter(folded_),
                               [this](const HistoryEntry& entry) { return foldedTexts(entry); });
    const auto sought = folded(searchText);
    std::vector<HistoryEntry> found;
    for (std::size_t index = 0; index < entries.size(); ++index) {
        const auto holds = [&sought](const QString& text) { return text.contains(sought); };
        if (!searchText.isEmpty() && !std::ranges::any_of(folded_[index], holds))
            continue;
        if (!intent.isEmpty() && entries[index].intent != intent)
            continue;
        found.push_back(entries[index]);
    }
    return found;
}

}  // namespace tavrelon::ui
