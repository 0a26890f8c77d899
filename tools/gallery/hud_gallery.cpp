#include <QGuiApplication>
#include <QPainter>
#include <QProcess>
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
    Gallery(QDir folder, bool composited)
        : folder_(std::move(folder)), suffix_(composited ? QStringLiteral("-composited") : QString()) {
        page_.setGeometry(QGuiApplication::primaryScreen()->geometry());
        page_.show();
        if (!eventually([&] { return x11_->isComposited() == composited; }, 15s))
            throw std::runtime_error("the compositor does not start");
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
        both.save(folder_.filePath(name + suffix_ + QStringLiteral(".png")));
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
    QString suffix_;
    Page page_;
    desktop::QtMainLoop loop_;
    desktop::StandardOutputLog log_;
    std::unique_ptr<desktop::X11PanelSurroundings> x11_ = desktop::X11PanelSurroundings::create().value();
    desktop::QtScreens screens_;
    desktop::QtPanels panels_{
        loop_, log_, {[this] { return x11_->isComposited(); }, [this](quint64 window) { x11_->focus(window); }}};
};

constexpr std::pair<ui::HUDLanguage, const char*> languages[] = {{ui::HUDLanguage::English, "en"},
                                                                 {ui::HUDLanguage::Chinese, "zh"}};

void pictureFaces(Gallery& gallery) {
    const QString heard = QStringLiteral("please write a friendly answer");
    const QString service = QStringLiteral("gen.pollinations.ai");
    const struct {
        const char* name;
        InputState state;
        InputTrigger trigger;
        QString transcript;
        QString waitsFor;
    } faces[] = {
        {"listening", InputState::Case::listening, InputTrigger::text, {}, {}},
        {"voice", InputState::Case::listeningVoice, InputTrigger::voice, heard, {}},
        {"voice-loading", InputState::Case::listeningVoice, InputTrigger::voice, {}, {}},
        {"video-recording", InputState::Case::recordingVideo, InputTrigger::video, {}, {}},
        {"video-processing", InputState::Case::processing, InputTrigger::video, {}, {}},
        {"auto-reply", InputState::Case::processing, InputTrigger::autoReply, {}, {}},
        {"auto-reply-waiting", InputState::Case::processing, InputTrigger::autoReply, {}, service},
        {"processing", InputState::Case::processing, InputTrigger::text, {}, {}},
        {"processing-waiting", InputState::Case::processing, InputTrigger::text, {}, service},
        {"completed", InputState::Case::completed, InputTrigger::text, {}, {}},
        {"error", InputState::error(QStringLiteral("Answer is on the clipboard")), InputTrigger::text, {}, {}},
        {"error-reason",
         InputState::error(QStringLiteral("Generation failed: API error (401): the key for models.example is not known "
                                          "there, or has been taken back by its owner")),
         InputTrigger::text,
         {},
         {}},
    };
    for (const auto& [language, suffix] : languages)
        for (const auto& face : faces) {
            ui::InputHUDModel model;
            model.show(face.state, face.trigger, language);
            model.setTranscript(face.transcript);
            model.setRecogniserLoading(face.transcript.isEmpty());
            auto size = ui::hudContentSize(face.state, face.trigger);
            if (!face.waitsFor.isEmpty()) {
                model.setWaitingFor(face.waitsFor);
                size = ui::hudWaitingSize(face.state, face.trigger);
            }
            gallery.picture(QStringLiteral("%1-%2").arg(QLatin1StringView(face.name), QLatin1StringView(suffix)),
                            platform::PanelKind::Overlay, QStringLiteral("hud/InputHUDView"), size, model);
        }
}

void pictureQuestion(Gallery& gallery) {
    for (const auto& [language, suffix] : languages) {
        ui::InputHUDModel model;
        model.show(InputState::Case::processing, InputTrigger::text);
        persistence::AppSettings settings;
        settings.appLanguage = QString::fromLatin1(suffix);
        model.setQuestion(
            app::consentQuestion({{QStringLiteral("integrate.api.nvidia.com"), QStringLiteral("gen.pollinations.ai")},
                                  generation::RequestContents::Picture},
                                 settings));
        gallery.picture(QStringLiteral("question-") + QLatin1StringView(suffix), platform::PanelKind::Overlay,
                        QStringLiteral("hud/InputHUDView"), ui::hudQuestionSize, model);
    }
}

void pictureStatus(Gallery& gallery) {
    for (const auto& [language, suffix] : languages)
        for (const bool enabled : {true, false}) {
            ui::HotkeyStatusHUDModel model;
            const auto name = enabled ? QStringLiteral("hotkeys-enabled-") : QStringLiteral("hotkeys-disabled-");
            gallery.picture(name + QLatin1StringView(suffix), platform::PanelKind::StatusOverlay,
                            QStringLiteral("hud/HotkeyStatusHUDView"), {260, 80}, model,
                            [&, spoken = language] { model.show(enabled, spoken); });
        }
}

void picturePrompt(Gallery& gallery) {
    for (const auto& [language, suffix] : languages)
        for (const auto& typed : {QString(), QStringLiteral("写一封简短的感谢信 to the team, in two lines")}) {
            ui::FloatingInputModel model;
            model.setIsEnglish(language == ui::HUDLanguage::English);
            const auto name = typed.isEmpty() ? QStringLiteral("prompt-") : QStringLiteral("prompt-typed-");
            gallery.picture(name + QLatin1StringView(suffix), platform::PanelKind::PromptBox,
                            QStringLiteral("floating/FloatingInputView"), {420, 74}, model,
                            [&] { model.setText(typed); });
        }
}

}  // namespace

void pictureOverlays(const QDir& folder) {
    for (const bool composited : {false, true}) {
        QProcess compositor;
        compositor.setStandardErrorFile(QProcess::nullDevice());
        if (composited)
            compositor.start(QStringLiteral("picom"), {QStringLiteral("--backend"), QStringLiteral("xrender")});
        Gallery gallery(folder, composited);
        pictureFaces(gallery);
        pictureQuestion(gallery);
        pictureStatus(gallery);
        picturePrompt(gallery);
        compositor.terminate();
        compositor.waitForFinished(5000);
    }
}

}  // namespace tavrelon::testing
