// The program itself in front of real editors: what happens when things go other than smoothly.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <csignal>

#include "desktop/main_job_session.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;

class MainJobDesk {
 public:
    StandInService service;
    XTestKeyboard keyboard;

    void answer(const QString& content, std::chrono::milliseconds delay = 0ms) {
        StandInAnswer answer;
        answer.content = content;
        answer.delayMs = static_cast<int>(delay.count());
        service.ledger().script({answer});
    }
    bool isAsked() {
        return eventually([this] { return !service.ledger().requests().empty(); });
    }
    void startInput(RunningTavrelon& tavrelon, int times = 1) {
        pressToggleHotkey(keyboard);
        ASSERT_TRUE(tavrelon.waitForLog(QStringLiteral("[Hotkey] Starting text listening"), times))
            << qPrintable(tavrelon.log());
    }
    void request(RunningTavrelon& tavrelon, RunningEditor& editor, const QString& text) {
        startInput(tavrelon);
        editor.type(text);
        pressToggleHotkey(keyboard);
    }
};

class MainJobTest : public MainJobDesk, public ::testing::TestWithParam<RunningEditor::Kind> {};
class HungEditorTest : public MainJobDesk, public ::testing::Test {};

TEST_P(MainJobTest, EscapeWhileTheModelThinksEndsItForGood) {
    RunningEditor editor(GetParam(), keyboard, QString());
    RunningTavrelon tavrelon(service);
    answer(QStringLiteral("TOO LATE"), 2s);
    request(tavrelon, editor, QStringLiteral("a question"));
    ASSERT_TRUE(isAsked());
    keyboard.strike(place::escape);
    EXPECT_TRUE(eventually([this] { return service.ledger().requests().front().abandoned; }))
        << "the request is ended on the wire";
    letPass(2500ms);  // past the moment at which the answer would have come
    editor.type(QStringLiteral("!"));
    EXPECT_EQ(editor.saved(QStringLiteral("a question!")), QStringLiteral("a question!"));
    EXPECT_EQ(tavrelon.historyCount(), 0);
    EXPECT_EQ(tavrelon.terminate(), 0);
}

TEST_P(MainJobTest, HeldModifiersNeitherDisturbTheWriteNorStick) {
    RunningEditor editor(GetParam(), keyboard, QStringLiteral("before "));
    RunningTavrelon tavrelon(service);
    constexpr place::Code end = 115;
    keyboard.strikeWith({place::leftControl}, end);
    answer(QStringLiteral("你好 answer"));
    startInput(tavrelon);
    editor.type(QStringLiteral("hi"));
    letKeysArrive();
    keyboard.press(place::leftShift);
    keyboard.press(place::leftAlt);
    keyboard.press(place::leftSuper);
    keyboard.strike(place::l);
    ASSERT_TRUE(eventually([&] { return tavrelon.historyCount() == 1; })) << qPrintable(tavrelon.log());
    keyboard.release(place::leftSuper);
    keyboard.release(place::leftAlt);
    keyboard.release(place::leftShift);
    EXPECT_TRUE(eventually([this] { return keyboard.downOnPostingDevice().empty() && keyboard.down().empty(); }));
    editor.type(QStringLiteral(" x"));
    EXPECT_EQ(editor.saved(QStringLiteral("before 你好 answer x")), QStringLiteral("before 你好 answer x"));
}

TEST_P(MainJobTest, AModelThatFailsLeavesTheFieldAlone) {
    RunningEditor editor(GetParam(), keyboard, QString());
    RunningTavrelon tavrelon(service);
    StandInAnswer failure;
    failure.status = 500;
    failure.body = "broken";
    service.ledger().setDefault(failure);
    request(tavrelon, editor, QStringLiteral("question"));
    EXPECT_TRUE(eventually(
        [&] { return tavrelon.log().contains(QStringLiteral("[StateMachine] Processing error: Generation failed: ")); },
        60s))
        << qPrintable(tavrelon.log());
    EXPECT_EQ(editor.saved(QStringLiteral("question")), QStringLiteral("question"));
}

INSTANTIATE_TEST_SUITE_P(Editors, MainJobTest,
                         ::testing::Values(RunningEditor::Kind::Mousepad, RunningEditor::Kind::Featherpad),
                         [](const auto& info) {
                             return info.param == RunningEditor::Kind::Mousepad ? "mousepad" : "featherpad";
                         });

TEST_F(HungEditorTest, AStoppedEditorDoesNotTakeTheKeyboardWithIt) {
    RunningEditor bystander(RunningEditor::Kind::Featherpad, keyboard, QString());
    auto hung = std::make_unique<RunningEditor>(RunningEditor::Kind::Mousepad, keyboard, QStringLiteral("text"));
    RunningTavrelon tavrelon(service);
    hung->signal(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    pressToggleHotkey(keyboard);
    ASSERT_TRUE(tavrelon.waitForLog(QStringLiteral("[Hotkey] Starting text listening"), 1))
        << qPrintable(tavrelon.log());
    keyboard.strike(place::escape);
    EXPECT_LT(timer.elapsed(), 5000);
    runProgram({"xdotool", "search", "--onlyvisible", "--class", "featherpad", "windowactivate", "--sync"});
    bystander.type(QStringLiteral("alive"));
    EXPECT_EQ(bystander.saved(QStringLiteral("alive")), QStringLiteral("alive"));
    answer(QStringLiteral("ANSWER"));
    startInput(tavrelon, 2);
    bystander.type(QStringLiteral("and well"));
    pressToggleHotkey(keyboard);
    ASSERT_TRUE(eventually([&] { return tavrelon.historyCount() == 1; })) << qPrintable(tavrelon.log());
    EXPECT_EQ(bystander.saved(QStringLiteral("aliveANSWER")), QStringLiteral("aliveANSWER"));
}

}  // namespace tavrelon::testing
