#include "ui/dashboard/page_model.h"

#include <algorithm>

namespace tavrelon::ui {

PageModel::PageModel(persistence::StorageManager& storage, std::span<const PageText> texts)
    : storage_(storage), texts_(texts), subscription_(storage.onChange([this] { Q_EMIT changed(); })) {}

QVariantMap PageModel::texts() const {
    QVariantMap map;
    const bool english = isEnglish();
    for (const auto& each : texts_)
        map.insert(each.name.toString(), (english ? each.english : each.chinese).toString());
    return map;
}

QString PageModel::text(QStringView name) const {
    const auto found = std::ranges::find(texts_, name, &PageText::name);
    Q_ASSERT(found != texts_.end());
    return (isEnglish() ? found->english : found->chinese).toString();
}

}  // namespace tavrelon::ui
