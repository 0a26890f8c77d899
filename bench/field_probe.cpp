// field-probe: what the product's own parts need with the field that has the focus, and what others need for the same.
// Prints one measurement a line: its name, a tab, milliseconds.
//   field-probe snapshot COUNT      reads of the field's text and selection
//   field-probe caret COUNT         the caret's place
//   field-probe hung PROCESS        the first read of a stopped application, and the next ones
//   field-probe write TEXT-LENGTH   a text into the field, until the field holds it
//   field-probe picture COUNT       the window as JPEG; fetching its pixels alone and encoding them alone
#include <signal.h>

#include <QApplication>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>
#include <cstdio>
#include <functional>
#include <stdexcept>

#include "async/task_scope.h"
#include "capture/context_capturer.h"
#include "capture/cursor_locator.h"
#include "desktop/atspi/atspi_accessibility.h"
#include "desktop/audio/pulse_audio_input.h"
#include "desktop/audio/vosk_speech.h"
#include "desktop/documents/document_process_reader.h"
#include "desktop/linux/dbus_input_source.h"
#include "desktop/linux/directory_defaults_store.h"
#include "desktop/linux/posix_file_system.h"
#include "desktop/linux/thread_serial_queue.h"
#include "desktop/qt/qt_http_session.h"
#include "desktop/qt/qt_image_codec.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/x11_event_tap.h"
#include "desktop/x11/x11_key_poster.h"
#include "desktop/x11/x11_pasteboard.h"
#include "desktop/x11/x11_screen_capture.h"
#include "desktop/x11/x11_workspace.h"
#include "jpeg_alone.h"
#include "output/output_writer.h"

namespace {

using namespace tavrelon;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class NoLog : public platform::Log {
 public:
    void line(const QString&) override {}
};

double milliseconds(Clock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

double timeOf(const std::function<void()>& work) {
    const auto begin = Clock::now();
    work();
    return milliseconds(Clock::now() - begin);
}

void report(const char* name, double value) {
    std::printf("%s\t%.4f\n", name, value);
}

void letPass(std::chrono::milliseconds time) {
    QEventLoop loop;
    QTimer::singleShot(time, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

bool eventually(const std::function<bool()>& condition, std::chrono::milliseconds limit = 20s) {
    for (const auto end = Clock::now() + limit; !condition(); QApplication::processEvents(QEventLoop::AllEvents, 1))
        if (Clock::now() > end)
            return false;
    return true;
}

void require(bool condition, const char* otherwise) {
    if (!condition)
        throw std::runtime_error(otherwise);
}

/// The product's parts on this display.
class Desk {
 public:
    std::optional<QString> value() {
        nextTurn();
        const auto snapshot = capturer.fetchFocusedTextSnapshot();
        return snapshot ? std::optional(snapshot->value) : std::nullopt;
    }
    void waitForField() {
        require(eventually([this] { return value().has_value(); }), "no field with a text has the focus");
    }

    /// What is read in one turn of the loop is read once.
    static void nextTurn() {
        QApplication::sendPostedEvents();
        QApplication::processEvents();
    }

    template <typename T>
    T finish(async::Task<T> task) {
        std::optional<T> result;
        QEventLoop wait;
        async::TaskScope scope(loop_);
        scope.spawn(keep(std::move(task), result, wait));
        if (!result) {
            QTimer::singleShot(20s, &wait, &QEventLoop::quit);
            wait.exec();
        }
        require(result.has_value(), "a task does not end");
        return *std::move(result);
    }
    void finish(async::Task<void> task) { finish(done(std::move(task))); }

    void empty() {
        keyPoster_->press(keys::keyA, keys::commandFlag);
        letPass(50ms);
        keyPoster_->press(keys::keyBackspace, keys::noModifiers);
        require(eventually([this] { return value() == QString(); }), "the field does not become empty");
        letPass(100ms);
    }
    void pasteBarely(const QString& text) {
        pasteboard_->clearContents();
        pasteboard_->setString(text);
        keyPoster_->press(keys::keyV, keys::commandFlag);
    }

 private:
    template <typename T>
    static async::Task<void> keep(async::Task<T> task, std::optional<T>& result, QEventLoop& wait) {
        result = co_await std::move(task);
        wait.quit();
    }
    static async::Task<bool> done(async::Task<void> task) {
        co_await std::move(task);
        co_return true;
    }

    NoLog log_;
    desktop::QtMainLoop loop_;
    std::shared_ptr<desktop::PostedKeys> posted_ = std::make_shared<desktop::PostedKeys>();
    std::unique_ptr<desktop::X11Workspace> workspace_ = desktop::X11Workspace::create().value();
    std::unique_ptr<desktop::X11Pasteboard> pasteboard_ = desktop::X11Pasteboard::create(loop_, log_).value();
    std::unique_ptr<desktop::X11KeyPoster> keyPoster_ = desktop::X11KeyPoster::open(loop_, posted_).value();
    std::unique_ptr<desktop::X11ScreenCapture> screenCapture_ =
        desktop::X11ScreenCapture::create(loop_, log_, *workspace_).value();
    desktop::AtspiAccessibility accessibility_{*workspace_, loop_, log_};
    desktop::X11EventTap eventTap_{loop_, log_, posted_};
    desktop::DBusInputSource inputSource_{loop_};
    desktop::QtImageCodec imageCodec_{loop_};
    desktop::QtHttpSession httpSession_{loop_};
    desktop::PosixFileSystem fileSystem_;
    desktop::ThreadSerialQueues serialQueues_;
    desktop::DocumentProcessReader documentReader_{loop_, QString()};
    desktop::PulseAudioInput audioInput_{loop_, log_};
    desktop::VoskSpeech speech_{loop_, log_, QString()};
    desktop::DirectoryDefaultsStore defaultsStore_{fileSystem_, log_, QString()};
    platform::Platform platform_{loop_,       log_,          accessibility_,  eventTap_,   *keyPoster_,  *pasteboard_,
                                 *workspace_, inputSource_,  *screenCapture_, imageCodec_, httpSession_, defaultsStore_,
                                 fileSystem_, serialQueues_, documentReader_, audioInput_, speech_,      QString()};

 public:
    capture::ContextCapturer capturer{platform_};
    capture::CursorLocator locator{accessibility_};
    output::OutputWriter writer{platform_};
};

void measureSnapshots(Desk& desk, int count) {
    desk.waitForField();
    for (int i = 0; i < count; ++i) {
        Desk::nextTurn();
        report("snapshot", timeOf([&] { require(desk.capturer.fetchFocusedTextSnapshot().has_value(), "no text"); }));
    }
}

void measureCarets(Desk& desk, int count) {
    desk.waitForField();
    for (int i = 0; i < count; ++i) {
        Desk::nextTurn();
        report("caret", timeOf([&] { require(desk.locator.caretRect().has_value(), "no place"); }));
    }
}

void measureHung(Desk& desk, int process) {
    desk.waitForField();
    ::kill(process, SIGSTOP);
    for (int i = 0; i < 21; ++i) {
        Desk::nextTurn();
        const auto taken = timeOf([&] { desk.capturer.fetchFocusedTextSnapshot(); });
        report(i == 0 ? "first" : "next", taken);
        letPass(50ms);
    }
    ::kill(process, SIGCONT);
}

QString words(int length) {
    QString text;
    for (int i = 0; text.size() < length; ++i)
        text += i % 6 == 5 ? u' ' : QChar('a' + i % 26);
    return text;
}

void measureWrites(Desk& desk, int length) {
    using Method = scenes::ReplacementStrategy::Method;
    const auto text = words(length);
    const std::pair<const char*, std::function<void()>> ways[] = {
        {"by accessibility", [&] { desk.finish(desk.writer.writeText(text, Method::replaceSelection, {}, 0)); }},
        {"behind a typed request", [&] { desk.finish(desk.writer.writeText(text, Method::deleteChars, 0, 0)); }},
        {"bare clipboard paste", [&] { desk.pasteBarely(text); }},
        {"xdotool type",
         [&] {
             QProcess::execute(QStringLiteral("xdotool"), {QStringLiteral("type"), QStringLiteral("--delay"),
                                                           QStringLiteral("1"), QStringLiteral("--"), text});
         }},
    };
    desk.waitForField();
    for (const auto& [name, write] : ways) {
        desk.empty();
        report(name, timeOf([&] {
                   write();
                   if (!eventually([&] { return desk.value() == text; }, 30s))
                       std::printf("%s\tnan\n", name);
               }));
    }
}

void measurePictures(Desk& desk, int count) {
    std::optional<platform::Image> image;
    require(eventually([&] { return (image = desk.finish(desk.capturer.captureFocusedWindowImage())).has_value(); }),
            "no picture");
    image->pixels.detach();  // into memory of this process alone
    image->memory.reset();
    const auto connection = desktop::X11Connection::open().value();
    desktop::ScreenPixels pixels(connection->get());
    const desktop::ScreenArea area{0, 0, image->width, image->height};
    const auto fetch = [&] { return pixels.fetch(connection->root(), area, Clock::now() + 2s).has_value(); };
    require(fetch(), "no pixels");  // the first time, memory is made for them
    for (int i = 0; i < count; ++i) {
        report("window to JPEG",
               timeOf([&] { require(desk.finish(desk.capturer.captureScreenshot()).has_value(), "no picture"); }));
        report("fetching alone", timeOf(fetch));
        report("encoding alone", timeOf([&] { bench::encodeJpegAlone(*image, 70); }));
    }
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const auto arguments = QApplication::arguments();
    const auto command = arguments.value(1);
    const int number = arguments.value(2).toInt();
    try {
        Desk desk;
        if (command == QStringLiteral("snapshot"))
            measureSnapshots(desk, number);
        else if (command == QStringLiteral("caret"))
            measureCarets(desk, number);
        else if (command == QStringLiteral("hung"))
            measureHung(desk, number);
        else if (command == QStringLiteral("write"))
            measureWrites(desk, number);
        else if (command == QStringLiteral("picture"))
            measurePictures(desk, number);
        else
            throw std::runtime_error("a command is missing");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "field-probe: %s\n", error.what());
        return 1;
    }
    return 0;
}
