#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QWidget>

#include "app/consent_question.h"
#include "desktop/linux/process/standard_output_log.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/qt/qt_panels.h"
#include "desktop/qt/qt_screens.h"
#include "desktop/x11/windows/x11_panel_surroundings.h"
#include "gallery/gallery.h"
#include "support/waiting.h"
#include "ui/floating/floating_input_model.h"
#include "ui/hud/hotkey_status_hud_model.h"
#include "ui/hud/input_hud_model.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;
using input::InputState;
using input::InputTrigger;

namespace {

/// A page to stand on: white on the left, dark on the right, with lines of writing.
class Page : public QWidget {
 public:
    Page() { setWindowFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnBottomHint); }
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const auto half = QRect(0, 0, width() / 2, height());
        painter.fillRect(half, Qt::white);
        painter.fillRect(half.translated(width() / 2, 0), QColor(0x1e, 0x1e, 0x22));
        for (int line = 20; line < height(); line += 22)
            for (const bool dark : {false, true}) {
                painter.setPen(dark ? QColor(0xd0, 0xd0, 0xd0) : QColor(0x20, 0x20, 0x20));
                painter.drawText(
                    dark ? width() / 2 + 12 : 12, line,
                    QStringLiteral("The quick brown fox jumps over the lazy dog, again and again and again."));
            }
    }
};

class Gallery {
 public:
    explicit Gallery(QDir folder) : folder_(std::move(folder)) {
        page_.setGeometry(QGuiApplication::primaryScreen()->geometry());
        page_.show();
        letPass(300ms);
    }

    void picture(
        const QString& name, platform::PanelKind kind, const QString& view, QSizeF size, QObject& model,
        const std::function<void()>& whenShown = [] {}) {
        const auto panel = panels_.create({kind, size, view, &model});
        QImage both;
        for (const bool dark : {false, true}) {
            const auto main = *screens_.mainScreen();
            const QPointF origin(main.frame.width() * (dark ? 0.75 : 0.25) - panel->frameSize().width() / 2, 400);
            panel->setFrameOrigin(origin);
            if (kind == platform::PanelKind::PromptBox)
                panel->makeKeyAndOrderFront();
            else
                panel->orderFront();
            whenShown();
            letPass(700ms);
            append(both, grab(origin, panel->frameSize()));
            panel->orderOut();
        }
        both.save(folder_.filePath(name + QStringLiteral(".png")));
    }

 private:
    QImage grab(QPointF origin, QSizeF size) {
        constexpr int around = 24;
        const auto area = desktop::flipped({origin, size}, screens_.mainScreen()->frame.height()).toRect();
        const auto wide = area.adjusted(-around, -around, around, around);
        auto* screen = QGuiApplication::primaryScreen();
        const QRectF points(QPointF(wide.topLeft()) / screen->devicePixelRatio(),
                            QSizeF(wide.size()) / screen->devicePixelRatio());
        const auto rounded = points.toAlignedRect();
        auto image = screen->grabWindow(0, rounded.x(), rounded.y(), rounded.width(), rounded.height()).toImage();
        image.setDevicePixelRatio(1);  // all that follows counts in pixels
        return image;
    }

    static void append(QImage& both, const QImage& next) {
        if (both.isNull()) {
            both = next;
            return;
        }
        QImage joined(both.width() + next.width(), both.height(), QImage::Format_RGB32);
        QPainter painter(&joined);
        painter.drawImage(0, 0, both);
        painter.drawImage(both.width(), 0, next);
        painter.end();
        both = joined;
    }

    QDir folder_;
    Page page_;
    desktop::QtMainLoop loop_;
    desktop::StandardOutputLog log_;
    std::unique_ptr<desktop::X11PanelSurroundings> x11_ = desktop::X11PanelSurroundings::create().value();
    desktop::QtScreens screens_;
    desktop::QtPanels panels_{
        loop_, log_, {[this] { return x11_->isComposited(); }, [this](quint64 window) { x11_->focus(window); }}};
};

void pictureFaces(Gallery& gallery) {
    const struct {
        const char* name;
        InputState state;
        InputTrigger trigger;
    } faces[] = {
        {"listening", InputState::Case::listening, InputTrigger::text},
        {"voice", InputState::Case::listeningVoice, InputTrigger::voice},
        {"video-recording", InputState::Case::recordingVideo, InputTrigger::video},
        {"video-processing", InputState::Case::processing, InputTrigger::video},
        {"auto-reply", InputState::Case::processing, InputTrigger::autoReply},
        {"processing", InputState::Case::processing, InputTrigger::text},
        {"completed", InputState::Case::completed, InputTrigger::text},
        {"error", InputState::error(QStringLiteral("Answer is on the clipboard")), InputTrigger::text},
        {"error-reason",
         InputState::error(QStringLiteral("Generation failed: API error (401): the key for models.example is not known "
                                          "there, or has been taken back by its owner")),
         InputTrigger::text},
    };
    for (const auto language : {ui::HUDLanguage::English, ui::HUDLanguage::Chinese})
        for (const auto& face : faces) {
            ui::InputHUDModel model;
            model.setTranscript(QStringLiteral("please write a friendly answer"));
            model.show(face.state, face.trigger, language);
            const auto suffix = language == ui::HUDLanguage::English ? QString() : QStringLiteral("-zh");
            gallery.picture(QString::fromLatin1(face.name) + suffix, platform::PanelKind::Overlay,
                            QStringLiteral("hud/InputHUDView"), ui::hudContentSize(face.state, face.trigger), model);
        }
    for (const auto trigger : {InputTrigger::text, InputTrigger::autoReply}) {
        ui::InputHUDModel model;
        model.show(InputState::Case::processing, trigger);
        model.setWaitingFor(QStringLiteral("gen.pollinations.ai"));
        gallery.picture(
            trigger == InputTrigger::text ? QStringLiteral("waiting") : QStringLiteral("waiting-auto-reply"),
            platform::PanelKind::Overlay, QStringLiteral("hud/InputHUDView"),
            ui::hudWaitingSize(InputState::Case::processing, trigger), model);
    }
    for (const bool isEnglish : {true, false}) {
        ui::InputHUDModel model;
        model.show(InputState::Case::processing, InputTrigger::text);
        persistence::AppSettings settings;
        settings.appLanguage = isEnglish ? QStringLiteral("en") : QStringLiteral("zh");
        model.setQuestion(
            app::consentQuestion({{QStringLiteral("integrate.api.nvidia.com"), QStringLiteral("gen.pollinations.ai")},
                                  generation::RequestContents::Picture},
                                 settings));
        gallery.picture(isEnglish ? QStringLiteral("question-english") : QStringLiteral("question-chinese"),
                        platform::PanelKind::Overlay, QStringLiteral("hud/InputHUDView"), ui::hudQuestionSize, model);
    }
}

}  // namespace

void pictureOverlays(const QDir& folder) {
    Gallery gallery(folder);
    pictureFaces(gallery);
    for (const bool enabled : {true, false}) {
        ui::HotkeyStatusHUDModel model;
        gallery.picture(enabled ? QStringLiteral("hotkeys-enabled") : QStringLiteral("hotkeys-disabled"),
                        platform::PanelKind::StatusOverlay, QStringLiteral("hud/HotkeyStatusHUDView"), {260, 80}, model,
                        [&] { model.show(enabled); });
    }
    for (const bool english : {true, false}) {
        ui::FloatingInputModel model;
        model.setIsEnglish(english);
        const auto typed = english ? QString() : QStringLiteral("写一封简短的感谢信");
        gallery.picture(english ? QStringLiteral("prompt-english") : QStringLiteral("prompt-chinese"),
                        platform::PanelKind::PromptBox, QStringLiteral("floating/FloatingInputView"), {420, 74}, model,
                        [&] { model.setText(typed); });
    }
}

}  // namespace tavrelon::testing
