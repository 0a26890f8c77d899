#include "gallery/dashboard_gallery.h"

#include "gallery/dashboard_gallery_pages.h"
#include "gallery/gallery.h"
#include "persistence/taught.h"
#include "ui/settings/hotkeys_settings_model.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;
using ui::DashboardTab;

namespace {

void pictureShell(DashboardGallery& gallery) {
    gallery.picture(QStringLiteral("help"), DashboardTab::settings, [](DashboardGallery& shown) {
        shown.settle();
        shown.dashboard.model()->setProperty("showingHelp", true);
    });
    gallery.picture(QStringLiteral("tool-tip"), DashboardTab::settings, [](DashboardGallery& shown) {
        shown.hover({44, 190});
        shown.settle(900ms);
    });
    gallery.picture(QStringLiteral("focus-sidebar"), DashboardTab::settings,
                    [](DashboardGallery& shown) { shown.tab(2); });
}

void pictureGeneral(DashboardGallery& gallery) {
    const auto begin = [&](app::Readiness readiness) {
        gallery.readiness = readiness;
        gallery.change([](auto& settings) {
            settings = persistence::defaultSettings();
            settings.hasAnswered = false;
        });
    };
    begin(app::Readiness::noModel);
    gallery.picture(QStringLiteral("first-model"), DashboardTab::settings,
                    [](DashboardGallery& shown) { shown.desktop.loop.runUntilIdle(); });
    begin(app::Readiness::hotkeysOff);
    gallery.picture(QStringLiteral("first-request"), DashboardTab::settings, [](DashboardGallery& shown) {
        shown.change([](auto& settings) { settings.enableCustomPollinations = true; });
        shown.desktop.loop.runUntilIdle();
    });
    begin(app::Readiness::active);
    gallery.change([](auto& settings) { settings.hasAnswered = true; });
    gallery.picture(QStringLiteral("settings"), DashboardTab::settings);
    gallery.picture(QStringLiteral("settings-focus"), DashboardTab::settings, [](DashboardGallery& shown) {
        shown.change([](auto& settings) {
            settings.visionModelPreference = QStringLiteral("quality");
            settings.enableNvidiaThink = settings.shareImprovements = true;
        });
        shown.tab(static_cast<int>(shown.pages.size()) + 2 + 2 + 3);
    });
    gallery.picture(QStringLiteral("settings-learned"), DashboardTab::settings, [](DashboardGallery& shown) {
        shown.change([](auto& settings) {
            settings.adaptiveSystemPrompt = QStringLiteral(
                "Write in short, dry sentences without exclamation marks; begin with the point, end with a thanks.");
            settings.adaptiveSystemPromptUpdatedAt = std::chrono::system_clock::now();
            settings.adaptiveSystemPromptSource = QStringLiteral("OpenAI (gen.pollinations.ai)");
            persistence::adoptTaught(settings);
        });
        shown.scrollDown();
    });
    gallery.picture(QStringLiteral("settings-set-aside"), DashboardTab::settings, [](DashboardGallery& shown) {
        shown.change([](auto& settings) { settings.enableNvidiaLocal = true; });
        shown.scrollDown();
    });
    gallery.picture(QStringLiteral("providers-set-aside"), DashboardTab::providers);
    gallery.change([](auto& settings) { settings = persistence::defaultSettings(); });
}

void pictureHotkeys(DashboardGallery& gallery) {
    gallery.picture(QStringLiteral("hotkeys"), DashboardTab::hotkeys);
    gallery.picture(QStringLiteral("hotkeys-recording"), DashboardTab::hotkeys, [](DashboardGallery& shown) {
        shown.change([](auto& settings) {
            settings.hotkeysEnabled = settings.floatingInputHotkeyEnabled = false;
            settings.videoHotkey = {122, keys::commandFlag};
            settings.autoReplyHotkey = settings.cancelHotkey = {keys::keyL, {}};
            settings.voiceInputSilenceTimeoutSeconds = 12.5;
        });
        shown.page<ui::HotkeysSettingsModel>().toggleRecording(4);
        shown.scrollDown();
        shown.keys.hold(keys::controlFlag | keys::optionFlag);
    });
    gallery.picture(QStringLiteral("hotkeys-off"), DashboardTab::hotkeys,
                    [](DashboardGallery& shown) { shown.page<ui::HotkeysSettingsModel>().toggleRecording(0); });
    gallery.change([](auto& settings) { settings = persistence::defaultSettings(); });
}

void picturePermissions(DashboardGallery& gallery) {
    gallery.picture(QStringLiteral("permissions"), DashboardTab::privacy);
    gallery.permission = platform::AuthorizationStatus::Authorized;
    gallery.desktop.platform.defaultsStore.setString(
        QStringLiteral("tavrelon.allowedServices"),
        QStringLiteral("text https://models.example:443\npictures https://pictures.example:8443"));
    gallery.picture(QStringLiteral("permissions-granted"), DashboardTab::privacy);
}

}  // namespace

void pictureDashboard(const QDir& folder) {
    DashboardGallery gallery(folder);
    gallery.desktop.httpSession.otherwise = machineWithOllama;
    pictureGeneral(gallery);
    pictureHotkeys(gallery);
    pictureClone(gallery);
    pictureProviders(gallery);
    pictureHistory(gallery);
    picturePermissions(gallery);
    pictureShell(gallery);
}

}  // namespace tavrelon::testing
