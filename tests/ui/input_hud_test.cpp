#include <gtest/gtest.h>

#include "generation/pollinations_error.h"
#include "support/input_desk.h"
#include "support/qt_gtest.h"
#include "ui/hud/input_hud_window_controller.h"

namespace tavrelon::ui {

using namespace std::chrono_literals;
using input::InputState;
using Case = InputState::Case;

namespace {

TEST(HUDLookTest, TheCornerStandsByTheCaretAndWithinTheScreen) {
    platform::Screen screen{.frame = {0, 0, 1280, 800}, .visibleFrame = {0, 30, 1280, 770}};
    const QSizeF size(200, 60);
    const auto at = [&](const input::InputState& state, std::optional<QRectF> caret) {
        return hudOrigin(state, caret, screen, size);
    };
    const QRectF caret(300, 682, 2, 18);
    EXPECT_EQ(at(Case::listening, caret), QPointF(310, 28 + 682));
    EXPECT_EQ(at(Case::processing, caret), QPointF(310, 20 + 682));
    EXPECT_EQ(at(Case::processing, QRectF(1200, 780, 2, 18)), QPointF(1080, 780 - 10 - 60)) << "no room above";
    EXPECT_EQ(at(Case::processing, QRectF(-40, 0, 2, 18)), QPointF(0, 30));
    EXPECT_EQ(at(Case::listening, std::nullopt), QPointF(565, 400));
    screen.scale = 2;
    EXPECT_EQ(at(Case::listening, caret), QPointF(320, 56 + 682));
}

}  // namespace

class InputHUDTest : public ::testing::Test {
 public:
    tavrelon::testing::InputDesk desk;
    std::optional<QRectF> caret = QRectF(300, 100, 2, 18);
    HUDLanguage language = HUDLanguage::English;
    std::unique_ptr<InputHUDWindowController> controller = std::make_unique<InputHUDWindowController>(
        InputHUDWindowController::Desktop{desk.loop, desk.userInterface, [this] { return caret; },
                                          [] { return std::optional<QRectF>(); },
                                          [this](const QString& symbol, const auto& reason) {
                                              desk.statusItem.setImage(symbol, reason.value_or(QString()));
                                          },
                                          [] { return QStringLiteral("models.example"); }, [this] { return language; }},
        desk.machine);

    InputHUDTest() { desk.generator.delay = 5s; }
    tavrelon::testing::FakePanel& panel() { return *desk.panels.made.at(0); }
    const QString& symbol() { return desk.statusItem.symbols.last(); }
    bool isPanelVisible() { return !desk.panels.made.empty() && panel().visible; }
};

TEST_F(InputHUDTest, AFailureSpeaksTheLanguageOfTheInterface) {
    language = HUDLanguage::Chinese;
    desk.machine->failInput(generation::PollinationsError::apiError(429, QStringLiteral("slow down")).description());
    desk.loop.runUntilIdle();
    const auto expected = QStringLiteral("API 错误（429）：slow down");
    EXPECT_EQ(hudLook(desk.state(), language).label, expected) << "what the service said stays as it is";
    EXPECT_EQ(desk.statusItem.description, expected);
    EXPECT_EQ(hudLook(desk.state(), HUDLanguage::English).label, QStringLiteral("API error (429): slow down"));
}

TEST_F(InputHUDTest, AFailureSaysItsReasonForFourSecondsAndInTheTrayUntilTheNextSuccess) {
    desk.toggle();
    desk.machine->failInput(QStringLiteral("No answer"));
    desk.loop.runUntilIdle();
    EXPECT_EQ(symbol(), QStringLiteral("exclamationmark.triangle.fill"));
    EXPECT_EQ(panel().contentSize, QSizeF(320, 60));
    EXPECT_EQ(hudLook(desk.state(), language).label, QStringLiteral("No answer"));
    const auto longReason = InputState::error(QString(41, u'x'));
    EXPECT_EQ(hudLook(longReason, language).label, longReason.message.english);
    EXPECT_EQ(hudContentSize(longReason, std::nullopt), QSizeF(420, 60));
    desk.loop.advance(3999ms);
    EXPECT_TRUE(desk.state() == InputState::error(QStringLiteral("No answer")));
    EXPECT_TRUE(panel().visible);
    desk.loop.advance(1ms);
    EXPECT_TRUE(desk.state() == Case::idle);
    EXPECT_FALSE(panel().visible);
    EXPECT_EQ(desk.statusItem.description, QStringLiteral("No answer"));
    desk.machine->startAutoReply();
    desk.loop.advance(4s);
    EXPECT_EQ(desk.statusItem.description, QStringLiteral("No answer"));
    desk.loop.advance(5s);
    EXPECT_EQ(desk.statusItem.description, QString());
}

TEST_F(InputHUDTest, WhoKeepsTheUserWaitingIsSaidAfterTenSeconds) {
    desk.generator.delay = 15s;
    desk.machine->startAutoReply();
    desk.loop.advance(9s);
    const auto says = [this] { return panel().model->property("waiting").toString(); };
    EXPECT_EQ(says(), QString());
    desk.loop.advance(2s);
    EXPECT_EQ(says(), QStringLiteral("Still waiting for models.example…"));
    EXPECT_EQ(panel().contentSize, QSizeF(320, 70));
    language = HUDLanguage::Chinese;
    desk.loop.advance(10s);
    EXPECT_EQ(says(), QString());
    EXPECT_FALSE(panel().visible);
    EXPECT_EQ(panel().model->property("label").toString(), QStringLiteral("就绪"));
}

TEST_F(InputHUDTest, AnInputThatIsRefusedAtOnceIsSaidToo) {
    desk.machine->failInput(QStringLiteral("Password field"));
    desk.loop.runUntilIdle();
    EXPECT_TRUE(isPanelVisible());
    EXPECT_EQ(symbol(), QStringLiteral("exclamationmark.triangle.fill"));
    desk.loop.advance(4s);
    EXPECT_TRUE(desk.state() == Case::idle);
}

TEST_F(InputHUDTest, ANewInputMeanwhileGoesOn) {
    desk.machine->failInput(QStringLiteral("No answer"));
    desk.loop.advance(1s);
    desk.toggle();
    desk.loop.advance(5s);
    EXPECT_TRUE(desk.state() == Case::listening);
    EXPECT_TRUE(panel().visible);
}

TEST_F(InputHUDTest, AnInputWithoutListeningIsPlacedWhenItIsProcessed) {
    caret.reset();
    desk.machine->startAutoReply();
    desk.loop.runUntilIdle();
    ASSERT_TRUE(isPanelVisible());
    EXPECT_EQ(panel().contentSize, QSizeF(220, 70));
    EXPECT_EQ(panel().origin, QPointF(565, 400));
}

}  // namespace tavrelon::ui
