#include "desktop/kwin/screen/kwin_screen_capture.h"

#include <QGuiApplication>
#include <QProcess>
#include <QScreen>
#include <QUuid>

#include "desktop/kwin/screen/kwin_pixels.h"

namespace tavrelon::desktop {

using platform::CaptureError;
using platform::ShareableContent;
using platform::ShareableDisplay;
using platform::ShareableWindow;
using Picture = std::expected<platform::Image, CaptureError>;

namespace {

/// For the process, from its start on. KWin gives no answer at all for a minimised window.
constexpr int limitMs = 1900;

std::unexpected<CaptureError> error(const QString& text) {
    return std::unexpected(CaptureError{text});
}

struct Outcome {
    bool isInTime = false;
    int code = -1;
    QByteArray output;
    QString reason;
};

/// Blocks until the process has ended, or the limit.
Outcome run(const QString& program, const QString& subject) {
    QProcess process;
    process.start(program, {subject});
    if (process.waitForFinished(limitMs) && process.exitStatus() == QProcess::NormalExit)
        return {true, process.exitCode(), process.readAllStandardOutput(),
                QString::fromUtf8(process.readAllStandardError())};
    const bool isInTime = process.state() == QProcess::NotRunning;
    process.kill();
    process.waitForFinished(1000);  // a killed process ends, but a busy machine takes its time
    return {isInTime, -1, {}, process.errorString()};
}

PictureQueue::Taken take(const QString& program, const QString& subject) {
    const auto outcome = run(program, subject);
    if (!outcome.isInTime)
        return error(QStringLiteral("KWin gives no picture in time."));
    if (outcome.code != 0)
        return error(QStringLiteral("KWin gives no picture: ") + outcome.reason);
    auto picture = pictureIn(outcome.output);
    return picture.isNull() ? error(QStringLiteral("KWin gives a picture of an unknown kind."))
                            : PictureQueue::Taken(std::move(picture));
}

/// Why there will never be one; asked for a window that there is not, since KWin looks first who asks. Empty otherwise.
QString refusal(const QString& program) {
    const auto outcome = run(program, QUuid::createUuid().toString());
    return outcome.isInTime && !outcome.reason.endsWith(u"InvalidWindow") ? outcome.reason : QString();
}

}  // namespace

KWinScreenCapture::KWinScreenCapture(async::MainLoop& loop, platform::Log& log, KWinWorkspace& workspace,
                                     QString program)
    : workspace_(workspace), program_(std::move(program)), queue_(loop) {
    queue_.post([&loop, &log, program = program_, isRefused = isRefused_] {
        const auto reason = refusal(program);
        *isRefused = !reason.isEmpty();
        if (*isRefused)
            loop.post([&log, reason] { log.line(QStringLiteral("[Screen] KWin gives no pictures: ") + reason); });
    });
}

async::Task<std::expected<ShareableContent, CaptureError>> KWinScreenCapture::shareableContent() {
    const auto* screen = QGuiApplication::primaryScreen();
    const auto size = screen ? screen->size() * screen->devicePixelRatio() : QSize();
    ShareableContent content{.displays = {{.width = size.width(), .height = size.height()}}, .windows = {}};
    if (const auto& front = workspace_.focusedWindow()) {
        const auto application = workspace_.applicationBehind(*front);
        content.windows.push_back({.identifier = application.windowIdentifier,
                                   .bundleIdentifier = application.bundleIdentifier,
                                   .isOnScreen = true,
                                   .width = front->place.width,
                                   .height = front->place.height});
    }
    co_return content;
}

async::Task<Picture> KWinScreenCapture::captureWindow(ShareableWindow window) {
    const auto identifier = workspace_.identifierOf(window.identifier);
    if (!identifier)
        co_return error(QStringLiteral("The window is no longer there."));
    co_return co_await picture(*identifier);
}

async::Task<Picture> KWinScreenCapture::captureDisplay(ShareableDisplay) {
    co_return co_await picture(QStringLiteral("--screen"));
}

async::Task<Picture> KWinScreenCapture::picture(QString subject) {
    co_return co_await queue_.picture([program = program_, subject] { return take(program, subject); });
}

}  // namespace tavrelon::desktop
