#include "ui/settings/privacy_settings_model.h"

#include <array>

namespace tavrelon::ui {

using platform::Permission;
using platform::Permissions;

namespace {

constexpr std::array<PageText, 9> pageTexts{{
    {u"title", u"Permissions", u"权限"},
    {u"granted", u"Granted", u"已授权"},
    {u"allow", u"Allow", u"允许"},
    {u"nextLogin", u"Installed; log out and in again to load it", u"已安装；注销并重新登录后生效"},
    {u"services", u"Allowed Services", u"已允许的服务"},
    {u"servicesDetail", u"You said yes to these; your requests go there without a question.",
     u"您已同意将请求发送到以下服务，不再询问。"},
    {u"textOnly", u"Text", u"文字"},
    {u"pictures", u"Text and pictures of windows", u"文字和窗口截图"},
    {u"forget", u"Ask Again", u"重新询问"},
}};

struct PermissionCardText {
    PageText title;        ///< `name` is the icon's
    PageText description;  ///< without a name
    Permission Permissions::* permission;
};

constexpr std::array<PermissionCardText, 4> cardTexts{{
    {{u"figure.arms.open", u"Accessibility", u"辅助功能"},
     {u"", u"Required for hotkeys", u"快捷键需要"},
     &Permissions::accessibility},
    {{u"display", u"Screen Recording", u"屏幕录制"},
     {u"", u"Required for context", u"了解上下文需要"},
     &Permissions::screenRecording},
    {{u"mic.fill", u"Microphone", u"麦克风"}, {u"", u"Required for voice", u"语音需要"}, &Permissions::microphone},
    {{u"display", u"GNOME Shell Extension", u"GNOME Shell 扩展"},
     {u"", u"Required in Wayland windows, from your next login on", u"Wayland 窗口需要，下次登录后生效"},
     &Permissions::shellExtension},
}};

/// As people write it: without the port that goes without saying.
QString nameOf(const QUrl& origin) {
    const bool isUsual = origin.port() == (origin.scheme() == QStringLiteral("https") ? 443 : 80);
    return isUsual ? origin.host() : origin.authority();
}

}  // namespace

PrivacySettingsModel::PrivacySettingsModel(persistence::StorageManager& storage, platform::Permissions permissions,
                                           app::ServiceConsent& consent)
    : PageModel(storage, pageTexts), permissions_(std::move(permissions)), consent_(consent) {}

QVariantList PrivacySettingsModel::cards() const {
    QVariantList list;
    for (const auto& card : cardTexts) {
        const auto& permission = permissions_.*card.permission;
        if (!permission.status)
            continue;  // only the last: cards are known by their number
        const auto status = permission.status();
        list << QVariantMap{
            {QStringLiteral("title"), (isEnglish() ? card.title.english : card.title.chinese).toString()},
            {QStringLiteral("description"),
             status == platform::AuthorizationStatus::Restricted
                 ? text(u"nextLogin")
                 : (isEnglish() ? card.description.english : card.description.chinese).toString()},
            {QStringLiteral("icon"), card.title.name.toString()},
            {QStringLiteral("isGranted"), status == platform::AuthorizationStatus::Authorized},
        };
    }
    return list;
}

QVariantList PrivacySettingsModel::services() const {
    QVariantList list;
    for (const auto& [origin, contents] : consent_.allowed())
        list << QVariantMap{
            {QStringLiteral("origin"), origin},
            {QStringLiteral("name"), nameOf(QUrl(origin))},
            {QStringLiteral("detail"), text(contents == generation::RequestContents::Text ? u"textOnly" : u"pictures")},
        };
    return list;
}

void PrivacySettingsModel::forget(const QString& origin) {
    consent_.forget(origin);
    Q_EMIT changed();
}

void PrivacySettingsModel::allow(int card) {
    if (card < 0 || card >= static_cast<int>(cardTexts.size()))
        return;
    const auto& permission = permissions_.*cardTexts[static_cast<std::size_t>(card)].permission;
    if (!permission.request)
        return;
    permission.request();
    Q_EMIT changed();
}

}  // namespace tavrelon::ui
