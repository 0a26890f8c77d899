#pragma once

#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <atomic>
#include <mutex>
#include <set>

#include "platform/file_system.h"

namespace tavrelon::testing {

/// A temporary folder that is "/" to its user, and that fails as it is told. Any thread.
class FailingFileSystem : public platform::FileSystem {
 public:
    using Done = std::expected<void, platform::FileError>;

    bool exists(const QString& path) const override { return QFileInfo::exists(real(path)); }
    std::expected<QByteArray, platform::FileError> read(const QString& path) const override {
        QFile file(real(path));
        if (isRefused(path) || !file.open(QIODevice::ReadOnly))
            return std::unexpected(failure(path));
        return file.readAll();
    }
    Done write(const QString& path, const QByteArray& content) override {
        QFile file(real(path));
        return result(path, !isRefused(path) && !isFull && file.open(QIODevice::WriteOnly) &&
                                file.write(content) == content.size());
    }
    Done createDirectory(const QString& path) override {
        return result(path, !isRefused(path) && QDir().mkpath(real(path)));
    }
    Done remove(const QString& path) override { return result(path, !isRefused(path) && QFile::remove(real(path))); }

    /// Lets every write fail, and nothing else.
    std::atomic<bool> isFull = false;

    /// Lets every operation on this very path, or on all paths, fail until `allowAll`, with the error "refused".
    void refuse(const QString& path) {
        const std::lock_guard lock(mutex_);
        refused_.insert(path);
    }
    void refuseAll() { allRefused_ = true; }
    void allowAll() {
        const std::lock_guard lock(mutex_);
        refused_.clear();
        allRefused_ = false;
    }

    /// Puts a file there with all folders above it, whatever is refused.
    void put(const QString& path, const QByteArray& content) {
        QDir().mkpath(QFileInfo(real(path)).path());
        QFile file(real(path));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            throw std::runtime_error("the test cannot write its files");
    }
    /// The file's content; empty when there is none.
    QByteArray content(const QString& path) const {
        QFile file(real(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// The paths of all files, sorted.
    QStringList files() const {
        QStringList paths;
        for (QDirIterator file(folder_.path(), QDir::Files, QDirIterator::Subdirectories); file.hasNext();)
            paths << file.next().sliced(folder_.path().size());
        paths.sort();
        return paths;
    }

 private:
    QString real(const QString& path) const { return folder_.path() + path; }
    bool isRefused(const QString& path) const {
        const std::lock_guard lock(mutex_);
        return allRefused_ || refused_.contains(path);
    }
    platform::FileError failure(const QString& path) const {
        return {path + (isRefused(path) ? QStringLiteral(": refused") : QStringLiteral(": fails"))};
    }
    Done result(const QString& path, bool done) const { return done ? Done() : std::unexpected(failure(path)); }

    QTemporaryDir folder_;
    mutable std::mutex mutex_;
    std::set<QString> refused_;
    std::atomic<bool> allRefused_ = false;
};

}  // namespace tavrelon::testing
