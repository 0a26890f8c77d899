#include "desktop/linux/directory_defaults_store.h"

namespace tavrelon::desktop {

DirectoryDefaultsStore::DirectoryDefaultsStore(platform::FileSystem& files, QString folder)
    : files_(files), folder_(std::move(folder)) {}

std::optional<QString> DirectoryDefaultsStore::pathOf(const QString& key) const {
    if (key.isEmpty() || key.startsWith(u'.') || key.contains(u'/') || key.contains(QChar::Null))
        return std::nullopt;
    return folder_ + u'/' + key;
}

std::optional<QByteArray> DirectoryDefaultsStore::data(const QString& key) const {
    const auto path = pathOf(key);
    if (!path)
        return std::nullopt;
    auto content = files_.read(*path);
    if (!content)
        return std::nullopt;
    return std::move(*content);
}

bool DirectoryDefaultsStore::setData(const QString& key, const QByteArray& value) {
    const auto path = pathOf(key);
    return path && files_.createDirectory(folder_) && files_.write(*path, value);
}

}  // namespace tavrelon::desktop
