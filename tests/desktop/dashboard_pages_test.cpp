// The pages of the dashboard of the program itself: what is set up there is used at once.
#include <gtest/gtest.h>

#include "desktop/dashboard_session.h"
#include "desktop/tools.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A document of one page with this text.
QByteArray pdf(const QByteArray& text) {
    const QByteArray page = "BT /F1 4 Tf 20 700 Td (" + text + ") Tj ET";
    return "%PDF-1.4\n"
           "1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
           "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
           "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 612 792]/Contents 4 0 R"
           "/Resources<</Font<</F1 5 0 R>>>>>>endobj\n"
           "4 0 obj<</Length " +
           QByteArray::number(page.size()) + ">>stream\n" + page +
           "\nendstream endobj\n"
           "5 0 obj<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>endobj\n"
           "trailer<</Root 1 0 R>>\n%%EOF\n";
}

}  // namespace

class DashboardPagesTest : public ::testing::Test {
 public:
    StandInService service;
    XTestKeyboard keyboard;

    static void type(const QString& text) {
        xdotool({u"type"_s, u"--delay"_s, u"15"_s, text});
        letKeysArrive();
    }
    static bool isInSight(const QString& title) {
        return !xdotool({u"search"_s, u"--onlyvisible"_s, u"--name"_s, title}).isEmpty();
    }
    void selectAll() { keyboard.strikeWith({place::leftControl}, place::a); }
    bool asksFor(const QString& path) {
        return eventually([&] {
            for (const auto& request : service.ledger().requests())
                if (request.path == path)
                    return true;
            return false;
        });
    }
    /// Asks for something in an editor, and waits for the answer there.
    void request(RunningTavrelon& tavrelon, const QString& text) {
        RunningEditor editor(RunningEditor::Kind::Mousepad, keyboard, QString());
        pressToggleHotkey(keyboard);
        ASSERT_TRUE(tavrelon.waitForLog(u"[Hotkey] Starting text listening"_s, tavrelon.historyCount() + 1));
        editor.type(text);
        letKeysArrive();
        const auto before = tavrelon.historyCount();
        pressToggleHotkey(keyboard);
        ASSERT_TRUE(eventually([&] { return tavrelon.historyCount() == before + 1; })) << qPrintable(tavrelon.log());
    }
};

TEST_F(DashboardPagesTest, AProfileIsLearnedFromADocumentThatTheUserChooses) {
    writeWhole(QDir::homePath() + u"/letters.pdf"_s, pdf(QByteArray("The weather in Somerset is fine. ").repeated(8)));
    StandInAnswer answer;
    answer.content = uR"({"system_prompt": "I am Ada.", "language_style": "Dry."})"_s;
    service.ledger().setDefault(answer);

    RunningTavrelon tavrelon(service, RunningTavrelon::Dashboard::Open);
    DashboardWindow window;
    window.press(u"Clone"_s);
    window.press(u"Learn from File"_s);
    EXPECT_TRUE(window.waitFor(u"Choose a file first."_s));
    window.press(u"Choose File"_s);
    ASSERT_TRUE(window.waitFor(u"letters.pdf"_s));
    type(u"letters.pdf"_s);
    window.press(u"Look in:"_s);  // closes the list of completions
    window.press(u"Open"_s);
    ASSERT_TRUE(eventually([] { return !isInSight(u"^Choose File$"_s); }));
    EXPECT_TRUE(window.waitFor(u"letters.pdf"_s));
    window.press(u"Learn from File"_s);
    ASSERT_TRUE(window.waitFor(u"Clone profile updated."_s)) << qPrintable(tavrelon.log());
    EXPECT_EQ(tavrelon.settings().at("cloneSystemPrompt"), "I am Ada.");
    EXPECT_TRUE(service.ledger().requests().back().body.contains("The weather in Somerset is fine."));

    xdotool({u"click"_s, u"--repeat"_s, u"20"_s, u"5"_s});  // scrolls down
    window.press(u"Clear"_s);
    EXPECT_TRUE(window.waitFor(u"No system prompt learned yet"_s));
    EXPECT_EQ(tavrelon.settings().at("cloneSystemPrompt"), "");
    EXPECT_EQ(tavrelon.terminate(), 0);
    EXPECT_FALSE(tavrelon.log().contains(u"[UI]"_s)) << qPrintable(tavrelon.log());
}

TEST_F(DashboardPagesTest, TheNextRequestGoesToTheProviderThatWasSwitchedOnAndIsInTheHistory) {
    StandInAnswer answer;
    answer.content = u"An ode to the harbour."_s;
    service.ledger().setDefault(answer);
    RunningTavrelon tavrelon(service, RunningTavrelon::Dashboard::Open);
    {
        DashboardWindow window;
        window.press(u"Providers"_s);
        window.press(u"Ollama"_s);
        window.press(u"Enable Ollama Vision"_s);
        window.press(u"Local"_s);
        window.press(u"Endpoint"_s);
        selectAll();
        type(service.url(u"/api/chat"_s));
        EXPECT_TRUE(eventually([&] {
            return tavrelon.settings().at("ollamaLocalEndpoint") == service.url(u"/api/chat"_s).toStdString();
        }));
        EXPECT_EQ(tavrelon.settings().at("enableCustomPollinations"), false);
    }
    request(tavrelon, u"a poem"_s);
    EXPECT_TRUE(asksFor(u"/api/chat"_s));

    DashboardWindow window;
    window.press(u"History"_s);
    window.press(u"搜索..."_s);
    type(u"nowhere"_s);
    EXPECT_TRUE(window.waitFor(u"暂无历史记录"_s));
    selectAll();
    type(u"HARBOUR"_s);
    keyboard.strike(place::tab);
    keyboard.strike(place::space);
    EXPECT_TRUE(window.waitFor(u"1 条记录"_s));
    EXPECT_TRUE(window.waitFor(u"AI"_s));
    window.press(u"清除所有历史记录"_s);
    EXPECT_TRUE(window.waitFor(u"选择一个应用查看对话"_s));
    EXPECT_TRUE(eventually([&] { return tavrelon.historyCount() == 0; }));
    EXPECT_EQ(tavrelon.terminate(), 0);
    EXPECT_FALSE(tavrelon.log().contains(u"[UI]"_s)) << qPrintable(tavrelon.log());
}

}  // namespace tavrelon::testing
