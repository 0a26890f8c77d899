#pragma once

#include <utility>
#include <vector>

#include "persistence/change_notice.h"
#include "persistence/history_entry.h"
#include "platform/file_system.h"
#include "platform/log.h"

namespace tavrelon::persistence {

/// What a clearing of the history took, in memory alone.
struct ClearedHistory {
    std::vector<HistoryEntry> entries;                  ///< newest first
    std::vector<std::pair<QString, QByteArray>> files;  ///< pictures and an unreadable history, each under its path

    bool isEmpty() const { return entries.empty() && files.empty(); }
};

/// Keeps the last requests of the user, on disk as well. Nothing here throws: a failed write is logged, and the list in
/// memory is then ahead of the file until the next one that succeeds. Main thread.
class HistoryManager {
 public:
    static constexpr QLatin1StringView imagesFolder{"history-images"};  ///< in the storage directory

    /// Makes the folders and loads the history from `storageDirectory`. A faulty file is logged and means an empty
    /// history; it stays on disk until the next change, and beside it as "history.json.broken" from then on.
    HistoryManager(platform::FileSystem& fileSystem, platform::Log& log, QString storageDirectory,
                   qsizetype maxEntries);

    /// Newest first. The reference stays good; the entries move with each change.
    const std::vector<HistoryEntry>& entries() const { return entries_; }

    /// Calls `handler` after each change of the entries, until the subscription is dropped.
    template <typename Handler>
    [[nodiscard]] ChangeSubscription onChange(Handler handler) const {
        return notice_.subscribe(std::move(handler));
    }

    /// Puts the entry in front and stores the list; what exceeds the cap goes, with its images.
    void addEntry(HistoryEntry entry);

    /// Removes all entries and their images, on disk at once. What it gives is all that is left of them.
    ClearedHistory clearHistory();

    /// Puts back what a clearing took, behind what came since; what exceeds the cap goes. A picture that cannot be
    /// written again is logged and lost.
    void restore(const ClearedHistory& cleared);

    /// Stores an image for the entry `id` and gives the path to put into it; absent when it could not be stored.
    std::optional<QString> saveImage(const QByteArray& data, const QUuid& id);

    /// How the user writes, in a few lines, judged by the newest `limit` inputs (0 or more); absent without any input.
    std::optional<QString> userStyleProfile(qint64 limit) const;

    /// Where an entry's `outputImagePath` lies; absent unless it is one that `saveImage` gives. A history file may name
    /// any file of the user's, and none but our own pictures is read or removed for it.
    std::optional<QString> resolvedImagePath(const QString& outputImagePath) const;

 private:
    void load();
    bool save();
    void dropExcess();
    void saveAndAnnounce();
    std::optional<QString> imageOf(const HistoryEntry& entry) const;
    void removeImages(const std::vector<HistoryEntry>& dropped);
    QString storagePath() const;
    QString brokenPath() const;
    QString imagesDirectory() const;

    platform::FileSystem& fileSystem_;
    platform::Log& log_;
    QString storageDirectory_;
    qsizetype maxEntries_;
    std::vector<HistoryEntry> entries_;
    std::vector<HistoryEntry> dropped_;  // since the last save; the stored history still names their pictures
    ChangeNotice notice_;
};

}  // namespace tavrelon::persistence
