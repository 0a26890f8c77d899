#pragma once

#include "platform/defaults_store.h"
#include "platform/file_system.h"
#include "platform/log.h"

namespace tavrelon::desktop {

/// Keeps each entry in a file of its name in one folder, where a person can read and edit it. The folder is made with
/// the first entry. What cannot be read or written is logged, by name and without its content. A name that could lead
/// elsewhere is refused: one that is empty, starts with a full stop or holds a slash or a null character.
class DirectoryDefaultsStore : public platform::DefaultsStore {
 public:
    DirectoryDefaultsStore(platform::FileSystem& files, platform::Log& log, QString folder);

    std::optional<QByteArray> data(const QString& key) const override;
    bool setData(const QString& key, const QByteArray& value) override;

 private:
    std::optional<QString> pathOf(const QString& key) const;

    platform::FileSystem& files_;
    platform::Log& log_;
    QString folder_;
};

}  // namespace tavrelon::desktop
