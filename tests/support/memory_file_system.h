#pragma once

#include <QStringList>
#include <atomic>
#include <map>
#include <mutex>
#include <set>

#include "platform/file_system.h"

namespace tavrelon::testing {

/// A file system in memory, with the folder "/" to begin with. Any thread.
class MemoryFileSystem : public platform::FileSystem {
 public:
    bool exists(const QString& path) const override;
    std::expected<QByteArray, platform::FileError> read(const QString& path) const override;
    std::expected<void, platform::FileError> write(const QString& path, const QByteArray& content) override;
    std::expected<void, platform::FileError> createDirectory(const QString& path) override;
    std::expected<void, platform::FileError> remove(const QString& path) override;

    /// Lets every write fail, and nothing else.
    std::atomic<bool> isFull = false;

    /// Puts a file there with all folders above it, whatever is refused.
    void put(const QString& path, const QByteArray& content);

    /// The file's content; empty when there is none.
    QByteArray content(const QString& path) const;

    /// The paths of all files, sorted.
    QStringList files() const;

    /// Lets every operation on this very path, or on all paths, fail until `allowAll`, with the error "refused".
    void refuse(const QString& path);
    void refuseAll();
    void allowAll();

 private:
    enum class Node { missing, file, folder };
    Node nodeAt(const QString& path) const;
    QString obstacle(const QString& path) const;
    void addFolders(const QString& path);

    mutable std::mutex mutex_;
    std::map<QString, QByteArray> files_;
    std::set<QString> folders_{QStringLiteral("/")};
    std::set<QString> refused_;
    bool allRefused_ = false;
};

}  // namespace tavrelon::testing
