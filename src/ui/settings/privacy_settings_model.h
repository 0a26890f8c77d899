#pragma once

#include <QVariantList>

#include "platform/permissions.h"
#include "ui/dashboard/page_model.h"

namespace tavrelon::ui {

/// The page of permissions. Its texts are English in both languages.
class PrivacySettingsModel : public PageModel {
    Q_OBJECT
    Q_PROPERTY(QVariantList cards READ cards NOTIFY changed)

 public:
    PrivacySettingsModel(persistence::StorageManager& storage, platform::Permissions permissions);

    /// Each a record of `title`, `description`, `icon` and `isGranted`, as things stand at the moment.
    QVariantList cards() const;

    /// Does what this desktop lets a program do for the permission of a card.
    Q_INVOKABLE void allow(int card);

    /// Reads everything anew.
    Q_INVOKABLE void refresh() { Q_EMIT changed(); }

 private:
    platform::Permissions permissions_;
};

}  // namespace tavrelon::ui
