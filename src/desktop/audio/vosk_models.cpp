#include "desktop/audio/vosk_models.h"

#include <QDateTime>
#include <QDirIterator>

namespace tavrelon::desktop {

namespace {

/// Differs whenever the files in the folder do. A file that takes another's place may be as long and as old, but the
/// time of its last change of status tells it apart.
QByteArray contentOf(const QString& folder) {
    auto content = folder.toUtf8();
    QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        const auto file = files.fileInfo();
        const auto changed = file.fileTime(QFileDevice::FileMetadataChangeTime).toMSecsSinceEpoch();
        content += file.filePath().toUtf8() + ' ' + QByteArray::number(file.size()) + ' ' + QByteArray::number(changed);
    }
    return content;
}

}  // namespace

VoskModelPtr VoskModels::model(const VoskLibrary& library, const QString& folder) {
    const std::lock_guard reading(reading_);
    const auto content = contentOf(folder);
    {
        const std::lock_guard lock(mutex_);
        if (content == content_)
            return model_;
    }
    keep(nullptr, {});  // two at a time may be more than the machine holds
    auto model = library.readModel(folder);
    keep(model, content);
    return model;
}

void VoskModels::keep(VoskModelPtr model, const QByteArray& content) {
    const std::lock_guard lock(mutex_);
    std::swap(model, model_);
    content_ = content;
}

bool VoskModels::isUnusable(const QString& folder) const {
    const std::lock_guard lock(mutex_);
    return !model_ && !content_.isEmpty() && content_ == contentOf(folder);
}

void VoskModels::giveBack() {
    VoskModelPtr model;  // is freed when nobody waits for the lock any more
    const std::lock_guard lock(mutex_);
    if (!model_)
        return;
    model.swap(model_);
    content_.clear();
}

}  // namespace tavrelon::desktop
