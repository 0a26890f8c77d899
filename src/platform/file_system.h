#pragma once

#include <QByteArray>
#include <QString>
#include <expected>

namespace tavrelon::platform {

struct FileError {
    QString description;
};

/// Whole-file operations on absolute paths. Any thread. Files are made 0600, folders 0700.
class FileSystem {
 public:
    virtual ~FileSystem() = default;

    virtual bool exists(const QString& path) const = 0;
    virtual std::expected<QByteArray, FileError> read(const QString& path) const = 0;

    /// Replaces the file as a whole: a crash at any moment leaves the old or the new content. On an error the old
    /// content stays.
    virtual std::expected<void, FileError> write(const QString& path, const QByteArray& content) = 0;

    /// With all folders above it; an existing folder is no error.
    virtual std::expected<void, FileError> createDirectory(const QString& path) = 0;
    virtual std::expected<void, FileError> remove(const QString& path) = 0;
};

}  // namespace tavrelon::platform
