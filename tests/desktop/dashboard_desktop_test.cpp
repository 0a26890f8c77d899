// The dashboard of the program itself, driven by mouse and keyboard and read over the accessibility bus.
#include <gtest/gtest.h>

#include "desktop/dashboard_session.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;

class DashboardDesktopTest : public ::testing::Test {
 public:
    StandInService service;
    XTestKeyboard keyboard;

    /// The key code of the stored toggle hotkey.
    static int toggleKey(const RunningTavrelon& tavrelon) {
        const auto settings = tavrelon.settings();
        return settings.contains("toggleHotkey") ? settings.at("toggleHotkey").at("keyCode").get<int>() : -1;
    }
};

TEST_F(DashboardDesktopTest, ARecordedHotkeyWorksInAnEditorWithoutARestart) {
    RunningTavrelon tavrelon(service, RunningTavrelon::Dashboard::Open);
    DashboardWindow window;
    window.press(QStringLiteral("Hotkeys"));
    ASSERT_TRUE(window.waitFor(QStringLiteral("Text Input")));
    window.press(QStringLiteral("Text Input"), QStringLiteral("push button"));
    // The old hotkey, in use elsewhere on the page, is as good as any other and starts nothing meanwhile.
    keyboard.strikeWith({place::leftSuper, place::leftAlt, place::leftShift}, place::k);
    ASSERT_TRUE(eventually([&] { return toggleKey(tavrelon) == 40; }));
    EXPECT_TRUE(tavrelon.settings().at("hotkeysEnabled"));
    window.press(QStringLiteral("Text Input"), QStringLiteral("push button"));
    keyboard.strikeWith({place::leftControl, place::leftSuper}, place::y);
    ASSERT_TRUE(eventually([&] { return toggleKey(tavrelon) == 16; }));
    EXPECT_EQ(tavrelon.settings().at("toggleHotkey").at("modifiersRaw"), 0x140000);
    window.press(QStringLiteral("Text Input"), QStringLiteral("push button"));  // and is left recording

    RunningEditor editor(RunningEditor::Kind::Mousepad, keyboard, QString());
    StandInAnswer answer;
    answer.content = QStringLiteral("ANSWER");
    service.ledger().script({answer});
    keyboard.strikeWith({place::leftControl, place::leftSuper}, place::y);
    ASSERT_TRUE(tavrelon.waitForLog(QStringLiteral("[Hotkey] Starting text listening"), 1));
    editor.type(QStringLiteral("a poem"));
    letKeysArrive();
    keyboard.strikeWith({place::leftControl, place::leftSuper}, place::y);
    ASSERT_TRUE(eventually([&] { return tavrelon.historyCount() == 1; })) << qPrintable(tavrelon.log());
    EXPECT_EQ(editor.saved(QStringLiteral("ANSWER")), QStringLiteral("ANSWER"));
    EXPECT_EQ(tavrelon.terminate(), 0);
    EXPECT_FALSE(tavrelon.log().contains(QStringLiteral("[UI]"))) << qPrintable(tavrelon.log());
}

TEST_F(DashboardDesktopTest, ANumberIsTakenWhenItsFieldIsLeftAndNonsenseIsNot) {
    RunningTavrelon tavrelon(service, RunningTavrelon::Dashboard::Open);
    DashboardWindow window;
    const auto seconds = [&] { return tavrelon.settings().value("voiceInputSilenceTimeoutSeconds", 2.0); };
    const auto type = [&](std::initializer_list<place::Code> keys) {
        window.press(QStringLiteral("Voice Input: Timeout"));
        keyboard.strikeWith({place::leftControl}, place::a);
        for (const auto key : keys)
            keyboard.strike(key);
        letKeysArrive();
    };
    constexpr place::Code four = 13, five = 14;
    window.press(QStringLiteral("Hotkeys"));
    ASSERT_TRUE(window.waitFor(QStringLiteral("Voice Input: Timeout")));
    type({four, five});
    window.press(QStringLiteral("Settings"));  // leaves the page with the field
    EXPECT_TRUE(eventually([&] { return seconds() == 30; })) << seconds();
    window.press(QStringLiteral("Hotkeys"));
    type({place::a, place::s});
    keyboard.strike(place::enter);
    type({five});
    keyboard.strike(place::enter);
    EXPECT_TRUE(eventually([&] { return seconds() == 5; })) << seconds();

    EXPECT_EQ(tavrelon.terminate(), 0);
    EXPECT_FALSE(tavrelon.log().contains(QStringLiteral("[UI]"))) << qPrintable(tavrelon.log());
}

TEST_F(DashboardDesktopTest, TabWalksThroughNamedControlsAndSpacePressesThem) {
    RunningTavrelon tavrelon(service, RunningTavrelon::Dashboard::Open);
    DashboardWindow window;
    QStringList walked;
    for (int stop = 0; stop < 30 && !walked.contains(QStringLiteral("Image Prompt Enhancement")); ++stop) {
        keyboard.strike(place::tab);
        walked << window.focused(walked.isEmpty() ? QString() : walked.last());
    }
    const QStringList wanted{QStringLiteral("Settings"),
                             QStringLiteral("Hotkeys"),
                             QStringLiteral("Permissions"),
                             QStringLiteral("Help"),
                             QStringLiteral("Donate"),
                             QStringLiteral("Search settings"),
                             QStringLiteral("中文"),
                             QStringLiteral("Speed"),
                             QStringLiteral("Quality"),
                             QStringLiteral("Think"),
                             QStringLiteral("Local Memory"),
                             QStringLiteral("Share Improvements"),
                             QStringLiteral("Image Prompt Enhancement")};
    QStringList inOrder;
    for (const auto& name : walked)
        if (wanted.contains(name))
            inOrder << name;
    EXPECT_EQ(inOrder, wanted) << qPrintable(walked.join(u','));
    EXPECT_FALSE(walked.contains(QString())) << "a stop without a name: " << qPrintable(walked.join(u','));
    keyboard.strike(place::space);
    EXPECT_TRUE(eventually([&] { return tavrelon.settings().value("enableImagePromptEnhancement", true) == false; }));

    window.press(QStringLiteral("中文"));
    EXPECT_TRUE(window.waitFor(QStringLiteral("视觉偏好")));
    EXPECT_EQ(tavrelon.settings().at("appLanguage"), "zh");
    window.press(QStringLiteral("快捷键"));
    EXPECT_TRUE(window.waitFor(QStringLiteral("恢复默认")));
    window.press(QStringLiteral("EN"));
    EXPECT_TRUE(window.waitFor(QStringLiteral("Restore Defaults")));

    keyboard.press(place::leftAlt);
    letKeysArrive();      // as RunningTavrelon::terminate
    keyboard.strike(70);  // F4
    EXPECT_TRUE(eventually([] { return !RunningTavrelon::isDashboardOpen(); }));
    keyboard.release(place::leftAlt);
    EXPECT_EQ(tavrelon.terminate(), 0);
    EXPECT_FALSE(tavrelon.log().contains(QStringLiteral("[UI]"))) << qPrintable(tavrelon.log());
}

}  // namespace tavrelon::testing
