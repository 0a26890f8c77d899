#include "persistence/history_manager.h"

#include <iterator>
#include <utility>

#include "persistence/style_profile.h"

namespace tavrelon::persistence {

namespace {

QString imagePathOf(const QUuid& id) {
    return HistoryManager::imagesFolder + u'/' + text::uuidText(id) + QStringLiteral(".jpg");
}

}  // namespace

HistoryManager::HistoryManager(platform::FileSystem& fileSystem, platform::Log& log, QString storageDirectory,
                               qsizetype maxEntries)
    : fileSystem_(fileSystem), log_(log), storageDirectory_(std::move(storageDirectory)), maxEntries_(maxEntries) {
    // If the folders cannot be made, the first write says so.
    static_cast<void>(fileSystem_.createDirectory(storageDirectory_));
    static_cast<void>(fileSystem_.createDirectory(imagesDirectory()));
    load();
}

void HistoryManager::load() {
    if (!fileSystem_.exists(storagePath()))
        return;
    const auto failed = [this](const QString& error) { log_.line(QStringLiteral("Failed to load history: ") + error); };
    const auto document = fileSystem_.read(storagePath());
    if (!document)
        return failed(document.error().description);
    try {
        entries_ = historyEntriesFrom(text::parseJson(*document));
    } catch (const text::JsonError& error) {
        failed(error.localizedDescription());
        // The next save replaces what a person may still be able to mend.
        static_cast<void>(fileSystem_.write(brokenPath(), *document));
    }
}

bool HistoryManager::save() {
    const auto written = fileSystem_.write(storagePath(), text::compactJson(toJson(entries_)));
    if (!written)
        log_.line(QStringLiteral("Failed to save history: ") + written.error().description);
    return written.has_value();
}

void HistoryManager::addEntry(HistoryEntry entry) {
    entries_.insert(entries_.begin(), std::move(entry));
    dropExcess();
    saveAndAnnounce();
}

void HistoryManager::dropExcess() {
    if (std::ssize(entries_) <= maxEntries_)
        return;
    const auto firstDropped = entries_.begin() + maxEntries_;
    dropped_.insert(dropped_.end(), firstDropped, entries_.end());
    entries_.erase(firstDropped, entries_.end());
}

void HistoryManager::saveAndAnnounce() {
    if (save())
        removeImages(std::exchange(dropped_, {}));
    notice_.announce();
}

ClearedHistory HistoryManager::clearHistory() {
    ClearedHistory cleared{std::exchange(entries_, {}), {}};
    const auto take = [&](const QString& path) {
        if (auto content = fileSystem_.read(path))
            cleared.files.emplace_back(path, *std::move(content));
    };
    for (const auto& entry : cleared.entries)
        if (const auto path = imageOf(entry))
            take(*path);
    if (fileSystem_.exists(brokenPath()))
        take(brokenPath());
    removeImages(cleared.entries);
    removeImages(std::exchange(dropped_, {}));
    // Whoever clears the history does not want it back at the next start, and a removal needs no room on the disk.
    if (!save())
        static_cast<void>(fileSystem_.remove(storagePath()));
    static_cast<void>(fileSystem_.remove(brokenPath()));
    notice_.announce();
    return cleared;
}

void HistoryManager::restore(const ClearedHistory& cleared) {
    for (const auto& [path, content] : cleared.files)
        if (const auto written = fileSystem_.write(path, content); !written)
            log_.line(QStringLiteral("Failed to restore history: ") + written.error().description);
    entries_.insert(entries_.end(), cleared.entries.begin(), cleared.entries.end());
    dropExcess();
    saveAndAnnounce();
}

std::optional<QString> HistoryManager::saveImage(const QByteArray& data, const QUuid& id) {
    auto path = imagePathOf(id);
    const auto written = fileSystem_.write(storageDirectory_ + u'/' + path, data);
    if (!written) {
        log_.line(QStringLiteral("Failed to save history image: ") + written.error().description);
        return std::nullopt;
    }
    return path;
}

std::optional<QString> HistoryManager::userStyleProfile(qint64 limit) const {
    return persistence::userStyleProfile(entries_, limit);
}

void HistoryManager::removeImages(const std::vector<HistoryEntry>& dropped) {
    for (const auto& entry : dropped)
        if (const auto path = imageOf(entry))
            static_cast<void>(fileSystem_.remove(*path));
}

std::optional<QString> HistoryManager::imageOf(const HistoryEntry& entry) const {
    return resolvedImagePath(entry.outputImagePath.value_or(QString()));
}

std::optional<QString> HistoryManager::resolvedImagePath(const QString& outputImagePath) const {
    const auto name = QStringView(outputImagePath).sliced(outputImagePath.lastIndexOf(u'/') + 1);
    const QUuid id(name.chopped(std::min<qsizetype>(name.size(), 4)));
    if (outputImagePath != imagePathOf(id))
        return std::nullopt;
    return storageDirectory_ + u'/' + outputImagePath;
}

QString HistoryManager::storagePath() const {
    return storageDirectory_ + QStringLiteral("/history.json");
}

QString HistoryManager::brokenPath() const {
    return storagePath() + QStringLiteral(".broken");
}

QString HistoryManager::imagesDirectory() const {
    return storageDirectory_ + u'/' + imagesFolder;
}

}  // namespace tavrelon::persistence
