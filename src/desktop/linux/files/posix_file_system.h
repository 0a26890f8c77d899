#pragma once

#include <mutex>
#include <set>

#include "platform/file_system.h"

namespace tavrelon::desktop {

/// Files of the local disk. A write goes to a temporary file beside the target, is flushed to the disk and then takes
/// the target's name, so a crash leaves the old or the new content; at most a few files `.tavrelon-write-N` stay
/// behind, which later writes use again. Where the folder refuses new files, an existing target is overwritten in
/// place. A target that is a symbolic link is followed; one that has a second name (a hard link) is not written. Only
/// regular files are read; a device may be written to. A file whose reading failed is not replaced before it was read:
/// whoever would write does not know what is in it.
class PosixFileSystem : public platform::FileSystem {
 public:
    bool exists(const QString& path) const override;
    std::expected<QByteArray, platform::FileError> read(const QString& path) const override;
    std::expected<void, platform::FileError> write(const QString& path, const QByteArray& content) override;
    std::expected<void, platform::FileError> createDirectory(const QString& path) override;
    std::expected<void, platform::FileError> remove(const QString& path) override;

 private:
    bool wasNotRead(const QByteArray& path) const;

    mutable std::mutex mutex_;
    mutable std::set<QByteArray> unread_;
};

}  // namespace tavrelon::desktop
