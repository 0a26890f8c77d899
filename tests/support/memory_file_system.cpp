#include "support/memory_file_system.h"

#include <QDir>

namespace tavrelon::testing {

namespace {

using platform::FileError;

std::unexpected<FileError> error(const QString& path, const QString& reason) {
    return std::unexpected(FileError{path + QStringLiteral(": ") + reason});
}

QString folderOf(const QString& path) {
    return path.first(std::max<qsizetype>(1, path.lastIndexOf(u'/')));
}

}  // namespace

MemoryFileSystem::Node MemoryFileSystem::nodeAt(const QString& path) const {
    if (folders_.contains(path))
        return Node::folder;
    return files_.contains(path) ? Node::file : Node::missing;
}

QString MemoryFileSystem::obstacle(const QString& path) const {
    if (allRefused_ || refused_.contains(path))
        return QStringLiteral("refused");
    return path.startsWith(u'/') && !path.contains(QChar::Null) ? QString() : QStringLiteral("no absolute path");
}

void MemoryFileSystem::addFolders(const QString& path) {
    for (QString folder = path; folder != QStringLiteral("/"); folder = folderOf(folder))
        folders_.insert(folder);
}

bool MemoryFileSystem::exists(const QString& path) const {
    const std::lock_guard lock(mutex_);
    return nodeAt(QDir::cleanPath(path)) != Node::missing;
}

std::expected<QByteArray, FileError> MemoryFileSystem::read(const QString& path) const {
    const std::lock_guard lock(mutex_);
    if (const auto reason = obstacle(path); !reason.isEmpty())
        return error(path, reason);
    const auto found = files_.find(QDir::cleanPath(path));
    if (found == files_.end())
        return error(path, QStringLiteral("no such file"));
    return found->second;
}

std::expected<void, FileError> MemoryFileSystem::write(const QString& path, const QByteArray& content) {
    const std::lock_guard lock(mutex_);
    if (const auto reason = obstacle(path); !reason.isEmpty())
        return error(path, reason);
    if (isFull)
        return error(path, QStringLiteral("no space left"));
    const auto clean = QDir::cleanPath(path);
    if (nodeAt(clean) == Node::folder)
        return error(path, QStringLiteral("is a folder"));
    if (nodeAt(folderOf(clean)) != Node::folder)
        return error(path, QStringLiteral("no such folder"));
    files_[clean] = content;
    return {};
}

std::expected<void, FileError> MemoryFileSystem::createDirectory(const QString& path) {
    const std::lock_guard lock(mutex_);
    if (const auto reason = obstacle(path); !reason.isEmpty())
        return error(path, reason);
    const auto clean = QDir::cleanPath(path);
    for (QString folder = clean; folder != QStringLiteral("/"); folder = folderOf(folder))
        if (nodeAt(folder) == Node::file)
            return error(path, QStringLiteral("a file is in the way"));
    addFolders(clean);
    return {};
}

std::expected<void, FileError> MemoryFileSystem::remove(const QString& path) {
    const std::lock_guard lock(mutex_);
    if (const auto reason = obstacle(path); !reason.isEmpty())
        return error(path, reason);
    if (files_.erase(QDir::cleanPath(path)) == 0)
        return error(path, QStringLiteral("no such file"));
    return {};
}

void MemoryFileSystem::put(const QString& path, const QByteArray& content) {
    const std::lock_guard lock(mutex_);
    addFolders(folderOf(path));
    files_[path] = content;
}

QByteArray MemoryFileSystem::content(const QString& path) const {
    const std::lock_guard lock(mutex_);
    const auto found = files_.find(path);
    return found == files_.end() ? QByteArray() : found->second;
}

QStringList MemoryFileSystem::files() const {
    const std::lock_guard lock(mutex_);
    QStringList paths;
    for (const auto& [path, content] : files_)
        paths << path;
    return paths;
}

void MemoryFileSystem::refuse(const QString& path) {
    const std::lock_guard lock(mutex_);
    refused_.insert(path);
}

void MemoryFileSystem::refuseAll() {
    const std::lock_guard lock(mutex_);
    allRefused_ = true;
}

void MemoryFileSystem::allowAll() {
    const std::lock_guard lock(mutex_);
    refused_.clear();
    allRefused_ = false;
}

}  // namespace tavrelon::testing
