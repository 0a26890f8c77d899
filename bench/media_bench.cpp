// Measures sound and video on the display and the sound server of its own, and prints the figures as JSON.
#include <time.h>

#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>
#include <cstdio>
#include <string_view>

#include "desktop_adapters.h"
#include "media/speech_recognizer.h"
#include "media/window_video_recorder.h"
#include "support/private_sound_server.h"

namespace tavrelon::bench {
namespace {

using namespace std::chrono_literals;
using Milliseconds = std::chrono::duration<double, std::milli>;

class NoLog : public platform::Log {
 public:
    void line(const QString& text) override { std::fprintf(stderr, "%s\n", qUtf8Printable(text)); }
};

struct Desktop : DesktopAdapters<NoLog> {
    void pass(std::chrono::milliseconds time) {
        QEventLoop wait;
        const auto timer = loop.after(time, [&wait] { wait.quit(); });
        wait.exec();
    }
};

void report(const char* name, const char* unit, const std::vector<double>& values) {
    std::printf("{\"name\": \"%s\", \"unit\": \"%s\", \"values\": [", name, unit);
    for (std::size_t i = 0; i < values.size(); ++i)
        std::printf("%s%.3f", i > 0 ? ", " : "", values[i]);
    std::printf("]}\n");
}

Milliseconds processorTime() {
    timespec used{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return std::chrono::seconds(used.tv_sec) + std::chrono::nanoseconds(used.tv_nsec);
}

Milliseconds since(std::chrono::steady_clock::time_point start) {
    return std::chrono::steady_clock::now() - start;
}

void measureSound(Desktop& desktop, int times) {
    const testing::PrivateSoundServer server;
    media::SpeechRecognizer recognizer(desktop.platform);
    std::vector<double> starts, costs;
    for (int i = 0; i < times; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        recognizer.startRecording();
        starts.push_back(since(begin).count());
        desktop.pass(300ms);  // past the beginning
        const auto samples = desktop.samples.load();
        const auto used = processorTime();
        desktop.pass(1000ms);
        const auto seconds = static_cast<double>(desktop.samples - samples) / platform::AudioInput::sampleRate;
        costs.push_back((processorTime() - used).count() / seconds);
        recognizer.cancelRecording();
        desktop.pass(100ms);
    }
    report("start of a recording, as the key's callback sees it", "ms", starts);
    report("processor time for a second of sound, without the engine", "ms", costs);
    const auto used = processorTime();
    desktop.pass(3000ms);
    report("processor time per second when nothing records any more", "ms", {(processorTime() - used).count() / 3});
}

/// A picture as a busy window shows it: shades, and small letters.
class BusyWindow : public QRasterWindow {
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        QLinearGradient shades(0, 0, width(), height());
        shades.setColorAt(0, Qt::white);
        shades.setColorAt(1, Qt::darkCyan);
        painter.fillRect(0, 0, width(), height(), shades);
        for (int y = 16; y < height(); y += 16)
            painter.drawText(
                8, y, QStringLiteral("The quick brown fox jumps over the lazy dog, line %1. ").arg(y).repeated(5));
    }
};

async::Task<void> collect(media::WindowVideoRecorder& recorder, std::vector<QByteArray>& frames, bool& done) {
    frames = co_await recorder.stopCapture();
    done = true;
}

void measureVideo(Desktop& desktop, int times) {
    BusyWindow window;
    window.showFullScreen();
    desktop.pass(1500ms);
    capture::Screenshots screenshots(desktop.platform);
    constexpr auto noPause = 0ms;
    constexpr std::size_t longest = 24;
    media::WindowVideoRecorder recorder(desktop.platform, screenshots, noPause, 100000);
    async::TaskScope scope(desktop.loop);
    std::vector<double> passes, sizes;
    for (int i = 0; i < times; ++i) {
        scope.spawn(recorder.startCapture());
        const auto begin = std::chrono::steady_clock::now();
        desktop.pass(1000ms);
        std::vector<QByteArray> frames;
        bool done = false;
        const auto length = since(begin);
        scope.spawn(collect(recorder, frames, done));
        desktop.pass(200ms);
        if (!done || frames.empty())
            throw std::runtime_error("no frame was taken");
        passes.push_back(length.count() / static_cast<double>(frames.size()));
        sizes.push_back(static_cast<double>(frames.front().size()) * longest / 1048576.0);
    }
    const auto size = QStringLiteral("%1x%2").arg(window.width()).arg(window.height());
    report(qUtf8Printable(QStringLiteral("recorded pass of a window of ") + size), "ms", passes);
    report(qUtf8Printable(QStringLiteral("24 frames of a window of ") + size), "MiB", sizes);
}

}  // namespace
}  // namespace tavrelon::bench

/// media-bench sound|video TIMES
int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "media-bench: say sound or video, and how many times\n");
        return 64;
    }
    tavrelon::bench::Desktop desktop;
    const int times = std::max(1, std::atoi(argv[2]));
    if (std::string_view(argv[1]) == "sound")
        tavrelon::bench::measureSound(desktop, times);
    else
        tavrelon::bench::measureVideo(desktop, times);
    return 0;
}
