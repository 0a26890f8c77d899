#pragma once

#include <QVariantList>

#include "app/service_consent.h"
#include "platform/permissions.h"
#include "ui/dashboard/page_model.h"

namespace tavrelon::ui {

/// The page of permissions: those of the desktop, whose texts are English in both languages, and those that the user
/// gave to services.
class PrivacySettingsModel : public PageModel {
    Q_OBJECT
    Q_PROPERTY(QVariantList cards READ cards NOTIFY changed)
    Q_PROPERTY(QVariantList services READ services NOTIFY changed)

 public:
    /// `consent` outlives the model.
    PrivacySettingsModel(persistence::StorageManager& storage, platform::Permissions permissions,
                         app::ServiceConsent& consent);

    /// Each a record of `title`, `description`, `icon` and `isGranted`, as things stand at the moment.
    QVariantList cards() const;

    /// The services that get requests without a question, each a record of `origin`, `name` and `detail`.
    QVariantList services() const;

    /// Makes the next request to this service ask again.
    Q_INVOKABLE void forget(const QString& origin);

    /// Does what this desktop lets a program do for the permission of a card.
    Q_INVOKABLE void allow(int card);

    /// Reads everything anew.
    Q_INVOKABLE void refresh() { Q_EMIT changed(); }

 private:
    platform::Permissions permissions_;
    app::ServiceConsent& consent_;
};

}  // namespace tavrelon::ui
