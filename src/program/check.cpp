#include "program/check.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSystemTrayIcon>
#include <cstdio>

#include "app/provider_settings.h"
#include "app/service_test.h"
#include "async/task_scope.h"
#include "async/waits.h"
#include "desktop/linux/files/directory_defaults_store.h"
#include "desktop/linux/files/posix_file_system.h"
#include "desktop/linux/process/single_instance.h"
#include "desktop/qt/qt_http_session.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/session/session_adapters.h"
#include "desktop/session/session_kind.h"
#include "keys/key_names.h"
#include "program/check_report.h"
#include "program/silent_buses.h"
#include "program/views.h"

namespace tavrelon::program {

namespace {

using namespace std::chrono_literals;
using Finding = CheckReport::Finding;

constexpr auto busPatience = 2s;  // the bus's launcher may have to be started first
constexpr auto busRhythm = 50ms;

/// The report is all that is wanted on the terminal.
class SilentLog : public platform::Log {
 public:
    void line(const QString&) override {}
};

Finding missing(const QString& reason) {
    return std::unexpected(reason);
}

QString readableFieldsIn(const char* session) {
    return QString::fromUtf8(session) +
           QStringLiteral(
               ": a request is found in fields that accessibility can read; elsewhere the prompt box takes it");
}

Finding session() {
    const auto desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP", QStringLiteral("no desktop's name is set"));
    switch (desktop::sessionKind()) {
        case desktop::SessionKind::Sway:
            return readableFieldsIn("sway");
        case desktop::SessionKind::Plasma:
            return readableFieldsIn("Plasma on Wayland");
        case desktop::SessionKind::Gnome:
            return readableFieldsIn("GNOME on Wayland");
        case desktop::SessionKind::OtherWayland:
            return QStringLiteral("Wayland (%1): served are X11 windows, and what its keys bind to --trigger")
                .arg(desktop);
        case desktop::SessionKind::X11:
            break;
    }
    return QStringLiteral("X11, display %1 (%2)").arg(qEnvironmentVariable("DISPLAY"), desktop);
}

Finding hotkeys(const keys::HotkeySet& set, platform::Hotkeys& desktop, bool isRunning) {
    if (!set.hotkeysEnabled)
        return missing(QStringLiteral("switched off, all of them; Settings switches them on"));
    if (isRunning)
        return QStringLiteral("held by the running program");
    std::vector<keys::HotkeyConfig> wanted;
    for (const auto& [isEnabled, hotkey] : {std::pair(set.toggleHotkeyEnabled, set.toggleHotkey),
                                            std::pair(set.autoReplyHotkeyEnabled, set.autoReplyHotkey),
                                            std::pair(set.toggleAllHotkeysHotkeyEnabled, set.toggleAllHotkeysHotkey),
                                            std::pair(set.videoHotkeyEnabled, set.videoHotkey),
                                            std::pair(set.floatingInputHotkeyEnabled, set.floatingInputHotkey)})
        if (isEnabled)
            wanted.push_back(hotkey);
    QStringList held;
    for (const auto& hotkey : desktop.heldElsewhere(wanted))
        held.append(keys::plainName(hotkey.keyCode, hotkey.modifiers));
    if (!held.isEmpty())
        return missing(
            QStringLiteral("held by another program: %1; choose others on the page Hotkeys").arg(held.join(u", ")));
    return QStringLiteral("free; %1 asks the model")
        .arg(keys::plainName(set.toggleHotkey.keyCode, set.toggleHotkey.modifiers));
}

Finding sound(platform::AudioInput& input) {
    if (!input.hasDefaultDevice())
        return missing(QStringLiteral("no microphone; voice hotkeys need one"));
    return QStringLiteral("a microphone with %1 channel(s)").arg(input.inputChannelCount());
}

Finding recogniser(platform::Speech& speech) {
    const auto installed = speech.locales();
    if (installed.isEmpty() || !speech.isAvailable(installed.front()))
        return missing(QStringLiteral("no model for speech; install-voice brings one"));
    return QStringLiteral("models: ") + installed.join(u", ");
}

async::Task<Finding> accessibilityBus(desktop::SessionAdapters& session, async::MainLoop& loop) {
    const auto start = loop.now();
    while (!session.accessibility.isBusReachable()) {
        if (loop.now() - start > busPatience)
            co_return missing(QStringLiteral("no bus; install at-spi2-core and log in anew: fields cannot be read"));
        co_await async::pause(loop, busRhythm);
    }
    co_return QStringLiteral("the bus answers");
}

async::Task<Finding> picture(platform::ScreenCapture& capture) {
    if (!capture.preflightAccess())
        co_return missing(QStringLiteral("this screen gives none"));
    const auto content = co_await capture.shareableContent();
    if (!content || content->displays.empty())
        co_return missing(content ? QStringLiteral("no screen") : content.error().description);
    const auto taken = co_await capture.captureDisplay(content->displays.front());
    if (!taken)
        co_return missing(taken.error().description);
    co_return QStringLiteral("the screen, %1 by %2 pixels").arg(taken->width).arg(taken->height);
}

async::Task<Finding> clipboard(platform::Pasteboard& pasteboard) {
    const auto items = co_await pasteboard.items();
    if (!items)
        co_return missing(QStringLiteral("the program that holds it does not give it away"));
    co_return items->empty() ? QStringLiteral("empty")
                             : QStringLiteral("read, in %1 form(s)").arg(items->front().dataByType.size());
}

/// The program's own files of a folder that it could not read.
QStringList unreadableIn(const QString& path) {
    QStringList unreadable;
    constexpr auto all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    for (const auto& entry : QDir(path).entryInfoList(all)) {
        const auto name = entry.fileName();
        const bool isOwn = name.startsWith(QStringLiteral("tavrelon.")) || name.endsWith(QStringLiteral(".json"));
        if (isOwn ? !entry.isFile() || !entry.isReadable() : entry.isFile() && !entry.isReadable())
            unreadable << name;
    }
    return unreadable;
}

/// A folder of the user's: a missing one is made at the first start.
Finding folder(const QString& path) {
    struct stat status{};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0)
        return errno == ENOENT ? Finding(path + QStringLiteral(": made at the first start"))
                               : missing(QStringLiteral("%1: %2").arg(path, qt_error_string(errno)));
    const auto mode = QString::number(status.st_mode & 07777U, 8);
    if (!S_ISDIR(status.st_mode))
        return missing(path + QStringLiteral(": is no folder"));
    if (status.st_uid != ::geteuid())
        return missing(path + QStringLiteral(": belongs to somebody else"));
    if (::access(QFile::encodeName(path).constData(), R_OK | W_OK | X_OK) != 0)
        return missing(QStringLiteral("%1: cannot be written, mode %2").arg(path, mode));
    if (const auto unreadable = unreadableIn(path); !unreadable.isEmpty())
        return missing(QStringLiteral("%1: cannot be read: %2").arg(path, unreadable.join(u", ")));
    return QStringLiteral("%1, mode %2").arg(path, mode);
}

Finding settingsFinding(const QString& fault, const QStringList& faulty) {
    if (!fault.isEmpty())
        return missing(QStringLiteral("cannot be read: ") + fault);
    if (!faulty.isEmpty())
        return missing(QStringLiteral("values of the wrong kind, whose defaults serve: ") + faulty.join(u", "));
    return QStringLiteral("in order");
}

/// The settings as they are stored; nothing is mended.
persistence::AppSettings readSettings(platform::DefaultsStore& store, CheckReport& report) {
    persistence::StoredSettings stored{persistence::defaultSettings(), {}};
    QString fault;
    try {
        if (const auto document = store.data(persistence::defaults_keys::settings))
            stored = persistence::storedSettingsFrom(text::parseJson(*document));
    } catch (const text::JsonError& error) {
        fault = error.localizedDescription();
    }
    report.add(QStringLiteral("settings"), settingsFinding(fault, stored.faulty));
    return std::move(stored.settings);
}

/// What it takes to ask the model, with a desktop or without.
struct Inquiry {
    const persistence::AppSettings& settings;
    platform::DefaultsStore& store;
    platform::HttpSession& http;
    async::MainLoop& loop;
    platform::Log& log;
};

async::Task<Finding> model(Inquiry by) {
    const auto endpoints = generation::ServiceEndpoints::builtIn();
    generation::PollinationsService models(by.loop, by.http, by.log, endpoints);
    models.configuration =
        app::serviceConfiguration(endpoints, by.settings, persistence::storedServiceKeys(by.store, by.settings));
    const auto test = co_await app::testService(models, by.loop);
    const auto seconds = QString::number(static_cast<double>(test.taken.count()) / 1000, 'f', 1);
    if (!test.answer)
        co_return missing(QStringLiteral("%1 (after %2 s)").arg(test.answer.error().english, seconds));
    co_return QStringLiteral("%1 answered in %2 s: %3").arg(test.source, seconds, test.answer->left(40));
}

async::Task<void> lookAtDesktop(desktop::SessionAdapters& adapters, const persistence::AppSettings& settings,
                                bool isRunning, CheckReport& report) {
    auto& platform = adapters.platform;
    const auto inFront = platform.workspace.frontmostApplication();
    report.add(QStringLiteral("window in front"),
               inFront ? inFront->localizedName.value_or(inFront->bundleIdentifier.value_or(QStringLiteral("unnamed")))
                       : QStringLiteral("none"));
    report.add(QStringLiteral("hotkeys"), hotkeys(settings, platform.hotkeys, isRunning));
    report.add(QStringLiteral("accessibility"), co_await accessibilityBus(adapters, platform.mainLoop));
    report.add(QStringLiteral("input method"), platform.inputSource.isInputMethodActive()
                                                   ? QStringLiteral("composing")
                                                   : QStringLiteral("none in use"));
    report.add(QStringLiteral("clipboard"), co_await clipboard(platform.pasteboard));
    report.add(QStringLiteral("pictures"), co_await picture(platform.screenCapture));
    report.add(QStringLiteral("tray"), QSystemTrayIcon::isSystemTrayAvailable()
                                           ? Finding(QStringLiteral("there is one"))
                                           : missing(QStringLiteral("none; the dashboard opens by starting tavrelon")));
    report.add(QStringLiteral("sound"), sound(platform.audioInput));
    report.add(QStringLiteral("recogniser"), recogniser(platform.speech));
}

async::Task<void> lookAtAll(desktop::SessionAdapters* adapters, bool isRunning, Inquiry inquiry, CheckReport& report) {
    if (adapters)
        co_await lookAtDesktop(*adapters, inquiry.settings, isRunning, report);
    report.add(QStringLiteral("model"), co_await model(inquiry));
    QCoreApplication::quit();
}

std::unique_ptr<QCoreApplication> applicationFor(bool hasDisplay, int& argc, char** argv) {
    if (!hasDisplay)
        return std::make_unique<QCoreApplication>(argc, argv);
    prepareViews();
    return std::make_unique<QApplication>(argc, argv);
}

}  // namespace

int check(int argc, char** argv, const desktop::UserFolders& folders, ReportForm form) {
    SilentLog log;
    CheckReport report;
    avoidSilentBuses(log);
    // The views' toolkit ends the process where it finds no display.
    const auto display = desktop::tryDisplay();
    const auto application = applicationFor(display.has_value(), argc, argv);
    desktop::QtMainLoop loop;

    const bool isRunning = desktop::SingleInstance::isClaimed(folders.configuration);
    report.add(QStringLiteral("program"), isRunning ? QStringLiteral("running") : QStringLiteral("not running"));
    report.add(QStringLiteral("configuration"), folder(folders.configuration));
    report.add(QStringLiteral("data"), folder(folders.applicationSupport));
    desktop::PosixFileSystem files;
    desktop::DirectoryDefaultsStore store(files, log, folders.configuration);
    const auto settings = readSettings(store, report);

    report.add(QStringLiteral("session"), display ? session() : missing(display.error()));
    std::unique_ptr<desktop::SessionAdapters> adapters;
    if (display) {
        auto windowing = desktop::openWindowingSystem(loop, log);
        if (windowing && !windowing->shortfall.isEmpty())
            report.add(QStringLiteral("windows"), missing(windowing->shortfall));
        if (windowing)
            adapters = std::make_unique<desktop::SessionAdapters>(loop, log, *std::move(windowing), folders);
        else
            report.add(QStringLiteral("windows"), missing(windowing.error()));
    }
    desktop::QtHttpSession http(loop);
    async::TaskScope scope(loop);
    scope.spawn(lookAtAll(adapters.get(), isRunning, {settings, store, http, loop, log}, report));
    QCoreApplication::exec();
    const auto text = report.text(form);
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stdout);
    return report.missing();
}

}  // namespace tavrelon::program
