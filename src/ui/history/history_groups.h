#pragma once

#include <QLocale>
#include <QStringList>

#include "persistence/history_entry.h"

namespace tavrelon::ui {

/// The requests made in one application.
struct AppHistoryGroup {
    QString id;
    QString displayName;
    std::vector<persistence::HistoryEntry> entries;  ///< oldest first, never empty

    const persistence::HistoryEntry& latest() const { return entries.back(); }
};

/// Entries by application, the one with the newest entry first. `entries` come newest first.
std::vector<AppHistoryGroup> groupedByApplication(const std::vector<persistence::HistoryEntry>& entries);

/// Finds entries by a piece of their texts, without regard to case as the user's language knows it. Keeps the texts of
/// the entries in lower case while there is a search. Main thread.
class HistorySearch {
 public:
    explicit HistorySearch(const QLocale& locale) : locale_(locale) {}

    /// The entries that hold `searchText` and, where `intent` is not empty, have that intent. The empty text is in
    /// every entry. `entries` must be those of the last call, or `forget` called since.
    std::vector<persistence::HistoryEntry> matching(const std::vector<persistence::HistoryEntry>& entries,
                                                    const QString& searchText, const QString& intent);

    /// The entries changed or the search is over.
    void forget() { folded_.clear(); }

 private:
    QString folded(const QString& text) const;
    QStringList foldedTexts(const persistence::HistoryEntry& entry) const;

    QLocale locale_;
    std::vector<QStringList> folded_;  ///< for each entry the texts that are searched
};

}  // namespace tavrelon::ui
