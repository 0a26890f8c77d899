#include "ui/settings/privacy_settings_model.h"

#include <array>

namespace tavrelon::ui {

using platform::Permission;
using platform::Permissions;

namespace {

constexpr std::array<PageText, 3> pageTexts{{
    {u"title", u"Permissions", u"Permissions"},
    {u"granted", u"Granted", u"Granted"},
    {u"allow", u"Allow", u"Allow"},
}};

struct PermissionCardText {
    QStringView title;
    QStringView description;
    QStringView icon;
    Permission Permissions::* permission;
};

constexpr std::array<PermissionCardText, 3> cardTexts{{
    {u"Accessibility", u"Required for hotkeys", u"figure.arms.open", &Permissions::accessibility},
    {u"Screen Recording", u"Required for context", u"display", &Permissions::screenRecording},
    {u"Microphone", u"Required for voice", u"mic.fill", &Permissions::microphone},
}};

}  // namespace

PrivacySettingsModel::PrivacySettingsModel(persistence::StorageManager& storage, platform::Permissions permissions)
    : PageModel(storage, pageTexts), permissions_(std::move(permissions)) {}

QVariantList PrivacySettingsModel::cards() const {
    QVariantList list;
    for (const auto& card : cardTexts) {
        const auto status = (permissions_.*card.permission).status();
        list << QVariantMap{
            {QStringLiteral("title"), card.title.toString()},
            {QStringLiteral("description"), card.description.toString()},
            {QStringLiteral("icon"), card.icon.toString()},
            {QStringLiteral("isGranted"), status == platform::AuthorizationStatus::Authorized},
        };
    }
    return list;
}

void PrivacySettingsModel::allow(int card) {
    if (card < 0 || card >= static_cast<int>(cardTexts.size()))
        return;
    (permissions_.*cardTexts[static_cast<std::size_t>(card)].permission).request();
    Q_EMIT changed();
}

}  // namespace tavrelon::ui
