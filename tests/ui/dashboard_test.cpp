#include <gtest/gtest.h>

#include "ui/dashboard_desk.h"

namespace tavrelon::ui {

using generation::ServiceConfiguration;
using generation::VisionModelPreference;

class DashboardTest : public ::testing::Test, public tavrelon::testing::DashboardDesk {};

TEST_F(DashboardTest, GeneralSettingsAreStoredAndReachTheService) {
    general.setVisionModelPreference(QStringLiteral("quality"));
    EXPECT_EQ(service.configuration.visionModels, ServiceConfiguration::modelsFor(VisionModelPreference::quality));
    EXPECT_EQ(stored().visionModelPreference, QStringLiteral("quality"));
    general.setVisionModelPreference(QStringLiteral("best"));
    EXPECT_EQ(general.visionModelPreference(), QStringLiteral("quality"));

    general.setThinkEnabled(true);
    EXPECT_TRUE(service.configuration.nvidiaThinkEnabled);
    general.setLocalLearningEnabled(false);
    general.setSharesImprovements(true);
    general.setEnhancesImagePrompts(false);
    EXPECT_EQ(stored(), storage.settings());
    EXPECT_TRUE(stored().enableNvidiaThink && stored().shareImprovements);
    EXPECT_FALSE(stored().enableLocalLearning || stored().enableImagePromptEnhancement);
}

TEST_F(DashboardTest, AFolderThatTakesNoSettingsStopsNothing) {
    store.refuseWrites = true;
    general.setThinkEnabled(true);
    hotkeys.setEnabled(0, false);
    EXPECT_TRUE(service.configuration.nvidiaThinkEnabled && general.isThinkEnabled());
    EXPECT_FALSE(manager.toggleHotkeyEnabled);
    EXPECT_EQ(store.data(persistence::defaults_keys::settings), std::nullopt);
}

TEST_F(DashboardTest, PermissionsAreReadAtEachDrawing) {
    const auto granted = [&](int card) {
        return privacy.cards().at(card).toMap().value(QStringLiteral("isGranted")).toBool();
    };
    int drawings = 0;
    QObject::connect(&privacy, &PageModel::changed, [&] { ++drawings; });
    EXPECT_TRUE(granted(0));
    EXPECT_FALSE(granted(1));
    EXPECT_FALSE(granted(2)) << "not determined is not granted";
    privacy.allow(2);
    privacy.allow(3);
    EXPECT_EQ(microphoneRequests, 1);
    EXPECT_EQ(drawings, 1);
    EXPECT_TRUE(granted(2));
}

TEST_F(DashboardTest, AServiceThatIsForgottenIsAskedForAgain) {
    store.setString(
        QStringLiteral("tavrelon.allowedServices"),
        QStringLiteral("text https://a.example:443\ntext http://b.example:81\npictures https://a.example:443"));
    const auto shown = [&] {
        QStringList lines;
        for (const auto& service : privacy.services())
            lines << service.toMap().value(QStringLiteral("name")).toString() + u'|' +
                         service.toMap().value(QStringLiteral("detail")).toString();
        return lines.join(u';');
    };
    storage.changeSettings([](auto& settings) { settings.appLanguage = QStringLiteral("en"); });
    EXPECT_EQ(shown(), QStringLiteral("a.example|Text and pictures of windows;b.example:81|Text"));
    privacy.forget(QStringLiteral("https://a.example:443"));
    EXPECT_EQ(shown(), QStringLiteral("b.example:81|Text"));
    const auto isAllowed = [&](const char* address) {
        return consent.isAllowed({QUrl(QString::fromLatin1(address))}, generation::RequestContents::Text);
    };
    EXPECT_FALSE(isAllowed("https://a.example/v1"));
    EXPECT_TRUE(isAllowed("http://b.example:81/v1"));
}

}  // namespace tavrelon::ui
