#include "ui/history/history_model.h"

#include <QFile>
#include <QFileInfo>

#include "platform/picture_header.h"
#include "ui/history/history_texts.h"

namespace tavrelon::ui {

HistoryModel::HistoryModel(persistence::StorageManager& storage, persistence::HistoryManager& history,
                           std::function<void()> clear, const QLocale& locale)
    : PageModel(storage, historyTexts),
      history_(history),
      clear_(std::move(clear)),
      locale_(locale),
      search_(locale_),
      subscription_(history.onChange([this] {
          search_.forget();
          refresh();
      })),
      settingsSubscription_(storage.onChange([this] {
          if (shownLanguage_ != language())
              refresh();
      })) {
    refresh();
}

void HistoryModel::setSearchText(const QString& typed) {
    if (typed == searchText_)
        return;
    searchText_ = typed;
    if (typed.isEmpty())
        search_.forget();
    refresh();
}

void HistoryModel::selectApp(const QString& id) {
    if (id == selectedAppID_)
        return;
    selectedAppID_ = id;
    refresh();
}

void HistoryModel::setFilterIntent(const QString& intent) {
    filterIntent_ = intent;
    refresh();
}

void HistoryModel::clear() {
    selectedAppID_.clear();
    clear_();
}

void HistoryModel::refresh() {
    shownLanguage_ = language();
    const auto groups = groupedByApplication(search_.matching(history_.entries(), searchText_, filterIntent_));
    std::vector<HistoryAppRow> rows;
    for (const auto& group : groups)
        rows.push_back(appRow(group, locale_, language()));
    groups_.replace(std::move(rows));

    const auto selected = std::ranges::find(groups, selectedAppID_, &AppHistoryGroup::id);
    if (selected == groups.end()) {
        conversation_.replace({});
        conversationName_.clear();
        conversationCount_.clear();
    } else {
        conversation_.replace(
            conversationRows(*selected, locale_, language(), [this](const QString& path) { return findImage(path); }));
        conversationName_ = selected->displayName;
        conversationCount_ = entryCountText(selected->entries.size(), language());
    }
    Q_EMIT changed();
}

/// Pictures that the program keeps are PNGs of its own encoding. What else lies there is not shown, since the view
/// would decode it in this process. Reads no more than the size of the picture. What is no ordinary file might keep its
/// reader waiting for ever.
std::optional<HistoryImage> HistoryModel::findImage(const QString& outputImagePath) const {
    const auto path = history_.resolvedImagePath(outputImagePath);
    if (!path || !QFileInfo(*path).isFile())
        return std::nullopt;
    constexpr qint64 head = 64;  // bytes; a PNG tells its size in its first 24
    QFile file(*path);
    const auto header = platform::pictureHeader(file.open(QIODevice::ReadOnly) ? file.read(head) : QByteArray());
    if (!header || header->format != platform::PictureFormat::Png)
        return std::nullopt;
    return HistoryImage{QUrl::fromLocalFile(*path), QSize(header->width, header->height)};
}

}  // namespace tavrelon::ui
