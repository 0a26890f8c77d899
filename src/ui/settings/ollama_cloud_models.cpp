#include "ui/settings/ollama_cloud_models.h"

namespace tavrelon::ui {

void OllamaCloudModels::load() {
    if (!hasRequestedCloudModels_)
        refresh();
}

void OllamaCloudModels::refresh() {
    if (isLoadingCloudModels_)
        return;
    isLoadingCloudModels_ = hasRequestedCloudModels_ = true;
    cloudModelsError_ = {};
    tasks_.spawn(fetch());
    Q_EMIT changed();
}

async::Task<void> OllamaCloudModels::fetch() {
    try {
        cloudModels_ = co_await service_.fetchOllamaCloudModels();
    } catch (const std::exception& error) {
        cloudModelsError_ = text::descriptionOf(error);
        hasRequestedCloudModels_ = false;
    }
    isLoadingCloudModels_ = false;
    Q_EMIT changed();
}

qsizetype OllamaCloudModels::find(const QString& typed, qsizetype from) const {
    const auto count = cloudModels_.size();
    for (qsizetype step = 0; step < count; ++step) {
        const auto index = (from + step + count) % count;
        if (cloudModels_[index].startsWith(typed, Qt::CaseInsensitive))
            return index;
    }
    return -1;
}

}  // namespace tavrelon::ui
