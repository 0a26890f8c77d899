#include <gtest/gtest.h>

#include <QPainter>
#include <QQuickItem>
#include <cmath>

#include "desktop/hud_session.h"
#include "support/input_desk.h"
#include "support/qt_gtest.h"
#include "ui/floating/floating_input_model.h"
#include "ui/hud/hotkey_status_hud_model.h"
#include "ui/hud/input_hud_window_controller.h"

namespace tavrelon::ui {

using namespace std::chrono_literals;
using input::InputState;
using input::InputTrigger;
using Case = InputState::Case;
using tavrelon::testing::InputDesk;
using tavrelon::testing::runQtUntil;

namespace {

bool isText(const QQuickItem& item) {
    return (item.inherits("QQuickText") && !item.property("text").toString().isEmpty()) ||
           (item.inherits("QQuickTextInput") && item.property("length").toInt() > 0);
}

QList<QQuickItem*> textsIn(QQuickItem& item) {
    QList<QQuickItem*> texts;
    for (auto* child : item.childItems())
        texts += isText(*child) && child->isVisible() ? QList{child} : textsIn(*child);
    return texts;
}

double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double leastContrastOn(const QImage& glass, QColor page, const QColor& ink) {
    QImage seen(glass.size(), QImage::Format_RGB32);
    seen.fill(page);
    QPainter(&seen).drawImage(seen.rect(), glass);
    double least = 21;
    for (int y = 0; y < seen.height(); ++y)
        for (int x = 0; x < seen.width(); ++x) {
            const auto [dark, light] = std::minmax({luminance(ink), luminance(seen.pixelColor(x, y))});
            least = std::min(least, (light + 0.05) / (dark + 0.05));
        }
    return least;
}

}  // namespace

class HUDDesktopTest : public ::testing::Test, public tavrelon::testing::PanelSession {
 public:
    InputHUDModel model;

    std::unique_ptr<platform::Panel> overlayAt(QPointF origin) {
        auto panel =
            panels.create({platform::PanelKind::Overlay, {200, 60}, QStringLiteral("hud/InputHUDView"), &model});
        panel->setFrameOrigin(origin);
        panel->orderFront();
        return panel;
    }
    void pass(std::chrono::milliseconds length) {
        runQtUntil([] { return false; }, length);
    }
};

TEST_F(HUDDesktopTest, NoOverlayTakesFocusOrClicks) {
    const std::pair<Case, InputTrigger> faces[] = {
        {Case::listening, InputTrigger::text},       {Case::listeningVoice, InputTrigger::voice},
        {Case::recordingVideo, InputTrigger::video}, {Case::processing, InputTrigger::video},
        {Case::processing, InputTrigger::autoReply}, {Case::completed, InputTrigger::text},
    };
    const auto panel = overlayAt({0, 0});
    HotkeyStatusHUDModel status;
    const auto statusPanel = panels.create(
        {platform::PanelKind::StatusOverlay, {260, 80}, QStringLiteral("hud/HotkeyStatusHUDView"), &status});
    statusPanel->setFrameOrigin({900, 400});  // its lower edge is 400 below the upper edge of the screen
    statusPanel->orderFront();
    QString typed;
    const auto clickThrough = [&](QPoint middle) {
        SCOPED_TRACE(::testing::Message() << middle.x() << "," << middle.y());
        ASSERT_TRUE(runQtUntil([&] { return !isWhite(middle); })) << "nothing is to be seen";
        const int before = clicks;
        click(middle);
        EXPECT_TRUE(runQtUntil([&] { return clicks == before + 1; }));
        keyboard.strike(tavrelon::testing::place::a);
        typed += u'a';
        EXPECT_TRUE(runQtUntil([&] { return editor.toPlainText().size() == typed.size(); }));
        EXPECT_FALSE(isWhite(middle)) << "the click has brought the editor above it";
    };
    double x = 100;
    for (const auto& [state, trigger] : faces) {
        model.show(state, trigger);
        const auto size = hudContentSize(state, trigger);
        panel->setContentSize(size);
        x += 80;  // two clicks at one place would be a double click
        panel->setFrameOrigin({x, 400});
        clickThrough(QPointF(x + size.width() / 2, 400 - size.height() / 2).toPoint());
    }
    clickThrough({960, 360});
    EXPECT_EQ(editor.toPlainText(), typed);
    EXPECT_EQ(log.lines(), QStringList());
}

TEST_F(HUDDesktopTest, TheOverlayStandsByTheCaretAndGoesWithTheState) {
    InputDesk desk;
    platform::UserInterface userInterface{desk.application, panels, screens, desk.statusItem};
    const InputHUDWindowController controller(
        {desk.loop, userInterface, [] { return QRectF(300, 400, 2, 18); }, [] { return std::nullopt; },
         [](const QString&, const auto&) {}, [] { return QString(); }, [] { return HUDLanguage::English; }},
        desk.machine);
    desk.toggle();
    ASSERT_TRUE(runQtUntil([&] { return shownView() && !isWhite({340, 360}); }));
    // 10 to the right of the caret and 28 above its lower edge
    EXPECT_EQ(shownView()->geometry(), QRect(310, 330, 60, 60));
    desk.type(QStringLiteral("hello"));
    desk.toggle();
    EXPECT_EQ(shownView()->geometry(), QRect(310, 330, 200, 60)) << "the lower left corner stays";
    desk.machine->cancelProcessing();
    desk.loop.advance(3s);
    EXPECT_EQ(shownView(), nullptr);
    EXPECT_TRUE(runQtUntil([&] { return isWhite({340, 360}); }));
    EXPECT_EQ(log.lines(), QStringList());
}

TEST_F(HUDDesktopTest, EveryFaceIsDrawnInItsColourWithinItsShape) {
    const struct {
        InputState state;
        InputTrigger trigger;
        const char* tint;
    } faces[] = {
        {Case::listening, InputTrigger::text, "#5c6373"},
        {Case::listeningVoice, InputTrigger::voice, "#ff9f45"},
        {Case::recordingVideo, InputTrigger::video, "#ff5d5d"},
        {Case::processing, InputTrigger::video, "#8f8cff"},
        {Case::processing, InputTrigger::autoReply, "#4db0f7"},
        {Case::processing, InputTrigger::text, "#b07bff"},
        {Case::completed, InputTrigger::text, "#43d68a"},
        {InputState::error(QStringLiteral("No")), InputTrigger::text, "#ff5d5d"},
    };
    for (const auto& face : faces) {
        SCOPED_TRACE(hudFaceName(hudFace(face.state, face.trigger)).toStdString() + " " + face.tint);
        model.show(face.state, face.trigger);
        const auto size = hudContentSize(face.state, face.trigger);
        auto panel = overlayAt({400, 400});
        panel->setContentSize(size);
        const QRect area(QPoint(400, 400 - static_cast<int>(size.height())), size.toSize());
        const QColor tint(QString::fromLatin1(face.tint));
        const auto near = [&](const QColor& color) {
            return std::abs(color.red() - tint.red()) + std::abs(color.green() - tint.green()) +
                       std::abs(color.blue() - tint.blue()) <
                   60;
        };
        const auto drawn = [&] {
            const auto image = screenshot(area);
            int pixels = 0;
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x)
                    pixels += near(image.pixelColor(x, y)) ? 1 : 0;
            return pixels >= 12;
        };
        EXPECT_TRUE(runQtUntil(drawn, 5s));
        EXPECT_TRUE(isWhite(area.topLeft())) << "without a compositor the corners are cut off";
        panel->orderOut();
    }
    EXPECT_EQ(log.lines(), QStringList());
}

TEST_F(HUDDesktopTest, EveryTextIsReadOnAWhiteAndOnABlackPage) {
    desktop::QtPanels glass{loop, log, {[] { return true; }, [this](quint64 window) { x11->focus(window); }}};
    const auto leastContrast = [&](
                                   platform::PanelKind kind, const QString& name, QSizeF size, QObject& shown,
                                   const std::function<void()>& whenShown = [] {}) {
        const auto panel = glass.create({kind, size, name, &shown});
        panel->orderFront();
        EXPECT_TRUE(runQtUntil([this] { return shownView() != nullptr; }));
        whenShown();
        pass(100ms);
        double least = 21;
        for (auto* text : textsIn(*shownView()->rootObject())) {
            const QColor ink = text->property("color").value<QColor>();
            const auto area = text->mapRectToScene(text->boundingRect()).toAlignedRect();
            text->setOpacity(0);  // an invisible one would make its neighbours move up
            const auto behind = shownView()->grabWindow().copy(area);
            EXPECT_TRUE(behind.hasAlphaChannel()) << "the page is not seen through it";
            for (const auto page : {Qt::white, Qt::black})
                least = std::min(least, leastContrastOn(behind, page, ink));
        }
        EXPECT_LT(least, 21) << "no text";
        return least;
    };
    const std::pair<InputState, InputTrigger> faces[] = {
        {Case::listeningVoice, InputTrigger::voice},   {Case::recordingVideo, InputTrigger::video},
        {Case::processing, InputTrigger::text},        {Case::processing, InputTrigger::autoReply},
        {Case::processing, InputTrigger::video},       {Case::completed, InputTrigger::text},
        {InputState{Case::error}, InputTrigger::text},
    };
    const auto overlay = QStringLiteral("hud/InputHUDView");
    model.setTranscript(QStringLiteral("please write"));
    for (const auto& [state, trigger] : faces) {
        model.show(state, trigger);
        EXPECT_GE(leastContrast(platform::PanelKind::Overlay, overlay, hudContentSize(state, trigger), model), 4.5)
            << model.face().toStdString();
    }
    model.setQuestion(HUDQuestion{QStringLiteral("Send?"), QStringLiteral("Your request"), QStringLiteral("Escape")});
    EXPECT_GE(leastContrast(platform::PanelKind::Overlay, overlay, hudQuestionSize, model), 4.5);
    HotkeyStatusHUDModel status;
    EXPECT_GE(leastContrast(platform::PanelKind::Overlay, QStringLiteral("hud/HotkeyStatusHUDView"), {260, 80}, status),
              4.5);
    FloatingInputModel prompt;
    for (const auto& typed : {QString(), QStringLiteral("translate")})
        EXPECT_GE(leastContrast(platform::PanelKind::Overlay, QStringLiteral("floating/FloatingInputView"), {420, 74},
                                prompt, [&] { prompt.setText(typed); }),
                  4.5);
}

TEST_F(HUDDesktopTest, AHiddenOverlayDrawsNothing) {
    int frames = 0;  // outlives the view that counts in it
    model.show(Case::listeningVoice, InputTrigger::voice);
    const auto panel = overlayAt({400, 400});
    ASSERT_TRUE(runQtUntil([this] { return shownView() != nullptr; }));
    auto* view = shownView();
    QObject::connect(view, &QQuickWindow::afterRendering, view, [&] { ++frames; }, Qt::DirectConnection);
    EXPECT_TRUE(runQtUntil([&] { return frames > 5; })) << "a shown one moves";
    panel->orderOut();
    pass(200ms);
    frames = 0;
    pass(500ms);
    EXPECT_EQ(frames, 0);
    EXPECT_FALSE(view->rootObject()->property("live").toBool());
}

}  // namespace tavrelon::ui
