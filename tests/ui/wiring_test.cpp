#include <gtest/gtest.h>

#include <QUrl>
#include <QVariant>

#include "app/app_delegate.h"
#include "support/qt_gtest.h"
#include "support/test_desktop.h"

namespace tavrelon::app {

using namespace std::chrono_literals;
using tavrelon::testing::Taken;

class WiringTest : public ::testing::Test {
 public:
    tavrelon::testing::TestDesktop desktop;
    AppDelegate delegate{desktop.platform, desktop.userInterface, generation::ServiceEndpoints::builtIn()};

    void launch() { delegate.applicationDidFinishLaunching(); }
    void press(const keys::HotkeyConfig& hotkey) {
        EXPECT_EQ(desktop.keyboard.press(hotkey.keyCode, hotkey.modifiers), Taken::ByUs);
        desktop.loop.runUntilIdle();
    }
    QStringList menuTitles() const {
        QStringList titles;
        for (const auto& item : desktop.statusItem.menu)
            titles << item.title;
        return titles;
    }
};

TEST_F(WiringTest, TheMasterSwitchShowsItsNewState) {
    launch();
    EXPECT_TRUE(desktop.panels.made.empty());
    press(keys::defaults::toggleAllHotkeysHotkey);
    ASSERT_EQ(desktop.panels.made.size(), 1U);
    EXPECT_TRUE(desktop.panels.made[0]->visible);
    EXPECT_EQ(desktop.panels.made[0]->kind, platform::PanelKind::StatusOverlay);
    EXPECT_FALSE(delegate.appState().storageManager().settings().hotkeysEnabled);
    desktop.loop.advance(1s);
    press(keys::defaults::toggleAllHotkeysHotkey);
    desktop.loop.advance(1300ms);
    EXPECT_EQ(desktop.panels.made[0]->alpha, 1) << "each press begins the wait anew";
    desktop.loop.advance(700ms);
    EXPECT_FALSE(desktop.panels.made[0]->visible);
    EXPECT_EQ(desktop.panels.made.size(), 1U);
}

TEST_F(WiringTest, TheFirstStartSpeaksTheSessionsLanguageAndLaterOnesTheUsers) {
    const auto languageAfterStart = [&](const QStringList& session) {
        desktop.platform.sessionLanguages = session;
        AppDelegate started(desktop.platform, desktop.userInterface, generation::ServiceEndpoints::builtIn());
        return started.appState().storageManager().settings().appLanguage;
    };
    const auto english = QStringLiteral("en");
    const auto chinese = QStringLiteral("zh");
    EXPECT_EQ(languageAfterStart({QStringLiteral("zh-Hans-CN"), QStringLiteral("en")}), chinese);
    EXPECT_EQ(languageAfterStart({QStringLiteral("de-DE"), QStringLiteral("zh-TW")}), chinese);
    EXPECT_EQ(languageAfterStart({QStringLiteral("de-DE")}), english);
    desktop.defaultsStore.setData(persistence::defaults_keys::settings, R"({"appLanguage": "en"})");
    EXPECT_EQ(languageAfterStart({QStringLiteral("zh-CN")}), english);
}

TEST_F(WiringTest, BothPromptBoxKeysOpenTheBoxAndTheSecondPressOfItsHotkeyClosesIt) {
    launch();
    press(keys::defaults::quickAskHotkey);
    ASSERT_EQ(desktop.panels.made.size(), 1U);
    EXPECT_EQ(desktop.panels.made[0]->kind, platform::PanelKind::PromptBox);
    EXPECT_TRUE(desktop.panels.made[0]->visible);
    press(keys::defaults::floatingInputHotkey);
    EXPECT_FALSE(desktop.panels.made[0]->visible);
    EXPECT_EQ(desktop.workspace.activated().size(), 1U);
    desktop.application.onActiveChanged(true);
    EXPECT_FALSE(desktop.keyboard.hotkeys.wants(keys::defaults::quickAskHotkey)) << "our own windows type it";
    desktop.application.onActiveChanged(false);
    EXPECT_TRUE(desktop.keyboard.hotkeys.wants(keys::defaults::quickAskHotkey));
}

TEST_F(WiringTest, TheStatusItemFollowsTheStateAndHasItsMenu) {
    int opened = 0;
    delegate.showDashboard = [&] { ++opened; };
    launch();
    EXPECT_EQ(opened, 1) << "the dashboard opens at every launch";
    EXPECT_EQ(menuTitles(), (QStringList{QStringLiteral("Open Dashboard"), QString(), QStringLiteral("About Tavrelon"),
                                         QString(), QStringLiteral("Quit")}));
    EXPECT_EQ(desktop.statusItem.menu[0].keyEquivalent, QStringLiteral(","));
    EXPECT_EQ(desktop.statusItem.menu[4].keyEquivalent, QStringLiteral("q"));
    EXPECT_TRUE(desktop.statusItem.choose(QStringLiteral("Open Dashboard")));
    EXPECT_TRUE(desktop.statusItem.choose(QStringLiteral("About Tavrelon")));
    EXPECT_TRUE(desktop.statusItem.choose(QStringLiteral("Quit")));
    EXPECT_EQ(opened, 2);
    EXPECT_EQ(desktop.application.aboutShown, 1);
    EXPECT_TRUE(desktop.application.terminated);
    delegate.appState().storageManager().changeSettings(
        [](persistence::AppSettings& settings) { settings.appLanguage = QStringLiteral("zh"); });
    EXPECT_EQ(menuTitles().last(), QStringLiteral("退出"));

    press(keys::defaults::toggleHotkey);
    EXPECT_EQ(desktop.statusItem.symbols, (QStringList{QStringLiteral("key.fill"), QStringLiteral("text.cursor")}));
    EXPECT_EQ(desktop.statusItem.description, QStringLiteral("Tavrelon"));
}

TEST_F(WiringTest, NothingGoesToAPublicServiceBeforeTheUserHasAgreed) {
    desktop.httpSession.otherwise = [](const auto&) {
        return tavrelon::testing::FakeHttpSession::Reply{
            platform::HttpResponse{.status = 200, .body = R"({"choices":[{"message":{"content":"ANSWER"}}]})"}, {}};
    };
    launch();
    const auto panel = [this]() -> auto& { return *desktop.panels.made.at(0); };
    const auto shows = [&](const char* property) { return panel().model->property(property).toString(); };
    const auto ask = [&](const char* text) {
        desktop.editor.open(QString());
        press(keys::defaults::toggleHotkey);
        desktop.editor.type(QString::fromUtf8(text));
        press(keys::defaults::toggleHotkey);
        desktop.loop.advance(2s);
    };
    const auto requests = [this] { return desktop.httpSession.requests().size(); };
    const auto state = [this] { return delegate.appState().inputStateMachine().currentState(); };

    const auto host = QUrl(generation::ServiceEndpoints::builtIn().pollinationsBaseURL).host();

    ask("one");
    EXPECT_EQ(shows("questionTitle"), QStringLiteral("Send to %1?").arg(host));
    EXPECT_EQ(shows("questionDetail"), QStringLiteral("Your request, the text around it, and the window's title."));
    EXPECT_TRUE(panel().visible);
    press(keys::defaults::cancelHotkey);
    desktop.loop.runUntilIdle();
    EXPECT_EQ(state(), input::InputState::Case::idle);
    ask("two");
    desktop.loop.advance(61s);
    EXPECT_EQ(state(), input::InputState::Case::idle) << "no answer is no";
    EXPECT_EQ(requests(), 0U);
    EXPECT_EQ(shows("face"), QStringLiteral("StandardHUD"));

    ask("three");
    press(keys::defaults::toggleHotkey);
    desktop.loop.runToEnd();
    EXPECT_EQ(desktop.editor.text(), QStringLiteral("ANSWER"));
    ask("four");
    desktop.loop.runToEnd();
    EXPECT_EQ(requests(), 2U) << "asked once";

    desktop.screenCapture.permitted = true;
    desktop.screenCapture.addWindow(QStringLiteral("org.example.editor"), 100, 50, 'w');
    ask("five");
    EXPECT_TRUE(shows("questionDetail").contains(QStringLiteral("a picture of the window")));
    EXPECT_EQ(requests(), 2U);
}

}  // namespace tavrelon::app
