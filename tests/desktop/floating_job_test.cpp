// The prompt box of the program itself, over real editors.
#include <gtest/gtest.h>

#include "desktop/main_job_session.h"
#include "desktop/tools.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;

class FloatingJobTest : public ::testing::TestWithParam<const char*> {
 public:
    StandInService service;
    XTestKeyboard keyboard;

    static bool isBoxOpen() { return frontmostTitle() == QStringLiteral("Tavrelon"); }
    static bool isEditorInFront() { return frontmostTitle().contains(QStringLiteral("field.txt")); }

    void openBox() {
        letKeysArrive();
        keyboard.strike(place::grave);
        ASSERT_TRUE(eventually(isBoxOpen)) << frontmostTitle().toStdString();
        letKeysArrive();
    }
};

TEST_P(FloatingJobTest, ThePromptIsAnsweredWhereTheUserWasWriting) {
    RunningEditor editor(editorNamed(GetParam()), keyboard, QString());
    editor.type(QStringLiteral("before "));
    RunningTavrelon tavrelon(service);
    StandInAnswer answer;
    answer.content = QStringLiteral("ANSWER");
    service.ledger().script({answer});
    openBox();
    editor.type(QStringLiteral("a poem"));  // the keys go to the box
    letKeysArrive();
    keyboard.strike(place::enter);
    EXPECT_TRUE(eventually(isEditorInFront));
    ASSERT_TRUE(eventually([&] { return tavrelon.historyCount() == 1; })) << qPrintable(tavrelon.log());
    EXPECT_EQ(editor.saved(QStringLiteral("before ANSWER")), QStringLiteral("before ANSWER"));
    EXPECT_EQ(tavrelon.terminate(), 0);
}

TEST_P(FloatingJobTest, EscapeGivesTheKeyboardBackAndAsksNobody) {
    RunningEditor editor(editorNamed(GetParam()), keyboard, QString());
    RunningTavrelon tavrelon(service);
    openBox();
    keyboard.strike(place::a);
    keyboard.strike(place::escape);
    EXPECT_TRUE(eventually(isEditorInFront)) << frontmostTitle().toStdString();
    editor.type(QStringLiteral("on"));
    EXPECT_EQ(editor.saved(QStringLiteral("on")), QStringLiteral("on"));
    EXPECT_TRUE(service.ledger().requests().empty());
    EXPECT_EQ(tavrelon.terminate(), 0);
}

INSTANTIATE_TEST_SUITE_P(Editors, FloatingJobTest, ::testing::Values("mousepad", "featherpad", "xterm"),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace tavrelon::testing
