#include "desktop/linux/files/directory_defaults_store.h"

namespace tavrelon::desktop {

DirectoryDefaultsStore::DirectoryDefaultsStore(platform::FileSystem& files, platform::Log& log, QString folder)
    : files_(files), log_(log), folder_(std::move(folder)) {}

std::optional<QString> DirectoryDefaultsStore::pathOf(const QString& key) const {
    if (key.isEmpty() || key.startsWith(u'.') || key.contains(u'/') || key.contains(QChar::Null))
        return std::nullopt;
    return folder_ + u'/' + key;
}

std::optional<QByteArray> DirectoryDefaultsStore::data(const QString& key) const {
    const auto path = pathOf(key);
    if (!path || !files_.exists(*path))
        return std::nullopt;
    auto content = files_.read(*path);
    if (!content) {
        log_.line(QStringLiteral("[Settings] Not read: ") + content.error().description);
        return std::nullopt;
    }
    return std::move(*content);
}

bool DirectoryDefaultsStore::setData(const QString& key, const QByteArray& value) {
    const auto path = pathOf(key);
    if (!path)
        return false;
    auto stored = files_.createDirectory(folder_);
    if (stored)
        stored = files_.write(*path, value);
    if (!stored)
        log_.line(QStringLiteral("[Settings] Not stored: ") + stored.error().description);
    return stored.has_value();
}

}  // namespace tavrelon::desktop
