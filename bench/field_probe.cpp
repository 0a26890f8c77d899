// field-probe: what the product's own parts need with the field that has the focus, and what others need for the same.
// Prints one measurement a line: its name, a tab, milliseconds.
//   field-probe snapshot COUNT      reads of the field's text and selection
//   field-probe caret COUNT         the caret's place
//   field-probe hung PROCESS        the first read of a stopped application, and the next ones
//   field-probe write accessibility|request|paste|typing TEXT-LENGTH COUNT   a text into the field, until it is there
//   field-probe picture COUNT       the window as JPEG; fetching its pixels alone and encoding them alone
#include <signal.h>

#include <QApplication>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string>

#include "async/task_scope.h"
#include "capture/context_capturer.h"
#include "capture/cursor_locator.h"
#include "desktop/x11/screen/x11_screen_window.h"
#include "desktop_adapters.h"
#include "jpeg_alone.h"
#include "output/output_writer.h"
#include "text/characters.h"

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

void require(bool condition, const std::string& otherwise) {
    if (!condition)
        throw std::runtime_error(otherwise);
}

/// The product's parts on this display.
class Desk : public bench::DesktopAdapters<NoLog> {
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
        async::TaskScope scope(loop);
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
        platform.keyPoster.press(keys::keyA, keys::commandFlag);
        letPass(50ms);
        platform.keyPoster.press(keys::keyBackspace, keys::noModifiers);
        require(eventually([this] { return value() == QString(); }), "the field does not become empty");
        letPass(100ms);
    }
    void pasteBarely(const QString& text) {
        platform.pasteboard.clearContents();
        platform.pasteboard.setString(text);
        platform.keyPoster.press(keys::keyV, keys::commandFlag);
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

 public:
    capture::ContextCapturer capturer{platform};
    capture::CursorLocator locator{accessibility};
    output::OutputWriter writer{platform};
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

void typeBy(const QString& tool, const QString& text) {
    const QStringList arguments{QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("1"),
                                QStringLiteral("--"), text};
    require(QProcess::execute(tool, arguments) == 0, "the other tool failed");
}

std::function<void()> writerOf(Desk& desk, const QString& way, const QString& text) {
    using Method = scenes::ReplacementStrategy::Method;
    if (way == QStringLiteral("accessibility"))
        return [&] { desk.finish(desk.writer.writeText(text, Method::replaceSelection, {}, 0)); };
    if (way == QStringLiteral("request"))
        return [&] { desk.finish(desk.writer.writeText(text, Method::deleteChars, 0, 0)); };
    if (way == QStringLiteral("paste"))
        return [&] { desk.pasteBarely(text); };
    require(way == QStringLiteral("typing"), "no such way of writing");
    return [&] { typeBy(QStringLiteral("xdotool"), text); };
}

std::function<void()> replacerOf(Desk& desk, const QString& request, const QString& text) {
    using Method = scenes::ReplacementStrategy::Method;
    return [&] {
        desk.finish(desk.writer.writeText(text, Method::deleteChars, text::characterCount(request), 0, {request}));
    };
}

/// Asks the more seldom the longer it takes, so that asking does not hold up an editor that is busy.
void waitForText(Desk& desk, const QString& text, Clock::time_point since) {
    const auto begin = Clock::now();
    for (auto value = desk.value(); value != text; value = desk.value()) {
        const auto now = Clock::now();
        require(now < begin + 60s, "after 60 s the field holds " + std::to_string(value.value_or(QString()).size()) +
                                       " characters, and not those " + std::to_string(text.size()));
        letPass(std::clamp(std::chrono::duration_cast<std::chrono::milliseconds>(now - since) / 50, 1ms, 200ms));
    }
}

/// A request that the answer takes the place of.
void prepareRequest(Desk& desk, const QString& request) {
    desk.pasteBarely(request);
    waitForText(desk, request, Clock::now());
    letPass(100ms);
}

void measureWrites(Desk& desk, const QString& way, int length, int count) {
    const auto text = words(length);
    const auto request = text.last(length / 2) + QStringLiteral(" 😀 ") + text.first(length / 2 - 4);
    const bool isTyped = way == QStringLiteral("typed");
    const auto write = isTyped ? replacerOf(desk, request, text) : writerOf(desk, way, text);
    desk.waitForField();
    for (int i = 0; i < count; ++i) {
        desk.empty();
        if (isTyped)
            prepareRequest(desk, request);
        const auto begin = Clock::now();
        write();
        waitForText(desk, text, begin);
        const auto taken = milliseconds(Clock::now() - begin);
        letPass(200ms);
        require(desk.value() == text, "more came into the field behind the text");
        report("write", taken);
    }
}

void measurePictures(Desk& desk, int count) {
    std::optional<platform::Image> image;
    require(eventually([&] {
                return (image = desk.finish(desk.capturer.screenshots.captureFocusedWindowImage())).has_value();
            }),
            "no picture");
    image->pixels.detach();  // into memory of this process alone
    image->memory.reset();
    const auto connection = desktop::X11Connection::open().value();
    desktop::ScreenPixels pixels(connection->get());
    const desktop::ScreenArea area{0, 0, image->width, image->height};
    const auto fetch = [&] { return pixels.fetch(connection->root(), area, Clock::now() + 2s).has_value(); };
    require(fetch(), "no pixels");  // the first time, memory is made for them
    for (int i = 0; i < count; ++i) {
        report("window to JPEG", timeOf([&] {
                   require(desk.finish(desk.capturer.screenshots.captureScreenshot()).has_value(), "no picture");
               }));
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
            measureWrites(desk, arguments.value(2), arguments.value(3).toInt(), arguments.value(4).toInt());
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
