#include <gtest/gtest.h>

#include "support/fake_windows.h"
#include "ui/dashboard/dashboard_window_controller.h"
#include "ui/dashboard_desk.h"

namespace tavrelon::ui {

using generation::VisionModelPreference;

class DashboardTest : public ::testing::Test, public tavrelon::testing::DashboardDesk {};

TEST_F(DashboardTest, TheChipSwitchesTheLanguageAndAnyOtherLanguageIsChinese) {
    storage.changeSettings([](persistence::AppSettings& settings) { settings.appLanguage = QStringLiteral("fr"); });
    EXPECT_FALSE(shell.isEnglish());
    int changes = 0;
    QObject::connect(&general, &PageModel::changed, [&] { ++changes; });
    shell.switchLanguage();
    EXPECT_EQ(stored().appLanguage, QStringLiteral("en"));
    shell.switchLanguage();
    EXPECT_EQ(stored().appLanguage, QStringLiteral("zh"));
    EXPECT_EQ(changes, 2) << "the pages follow";
}

TEST_F(DashboardTest, ATabShowsItsPageAndItsModelLivesOn) {
    EXPECT_EQ(shell.pageView(), QStringLiteral("qrc:/tavrelon/ui/Settings.qml"));
    auto* first = shell.pageModel();
    shell.setProperty("searchText", QStringLiteral("history"));
    EXPECT_EQ(shell.selection(), 0) << "the search filters nothing";
    shell.select(5);
    EXPECT_EQ(shell.pageView(), QStringLiteral("qrc:/tavrelon/ui/Permissions.qml"));
    for (const int nowhere : {-1, 6})
        shell.select(nowhere);
    EXPECT_EQ(shell.selection(), 5);
    shell.select(0);
    EXPECT_EQ(shell.pageModel(), first);
    shell.donate();
    EXPECT_EQ(donations, 1);
}

TEST_F(DashboardTest, TheWindowIsBuiltWhenOpenedAndGoneWhenClosed) {
    tavrelon::testing::FakeWindows windows;
    DashboardWindowController controller(windows, storage, pages, [] {});
    EXPECT_EQ(windows.made, 0);
    controller.show();
    controller.model()->select(3);
    controller.show();
    EXPECT_EQ(windows.made, 1);
    EXPECT_EQ(windows.broughtToFront, 2);
    EXPECT_EQ(windows.last.contentSize, QSizeF(800, 600));
    EXPECT_EQ(controller.model()->selection(), 3) << "an open window stays as it is";
    windows.closeLast();
    EXPECT_EQ(windows.open, 0);
    EXPECT_FALSE(controller.isOpen());
    EXPECT_EQ(controller.model(), nullptr);
    controller.show();
    EXPECT_EQ(windows.made, 2);
    EXPECT_EQ(controller.model()->selection(), 0);
}

TEST_F(DashboardTest, GeneralSettingsAreStoredBeforeTheyReachTheService) {
    store.onWrite = [&] {
        EXPECT_EQ(service.visionModelPreference(), VisionModelPreference::speed);
        EXPECT_FALSE(service.nvidiaThinkEnabled);
    };
    general.setVisionModelPreference(QStringLiteral("quality"));
    store.onWrite = [] {};
    EXPECT_EQ(service.visionModelPreference(), VisionModelPreference::quality);
    EXPECT_EQ(stored().visionModelPreference, QStringLiteral("quality"));
    general.setVisionModelPreference(QStringLiteral("best"));
    EXPECT_EQ(general.visionModelPreference(), QStringLiteral("quality"));

    general.setThinkEnabled(true);
    EXPECT_TRUE(service.nvidiaThinkEnabled);
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
    EXPECT_TRUE(service.nvidiaThinkEnabled && general.isThinkEnabled());
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

}  // namespace tavrelon::ui
