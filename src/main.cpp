// Picks the adapters of this desktop, hands them to the application, and runs its loop.
#include <sysexits.h>

#include <QApplication>
#include <QFile>
#include <cstdio>
#include <expected>

#include "app/app_delegate.h"
#include "desktop/atspi/atspi_accessibility.h"
#include "desktop/audio/pulse_audio_input.h"
#include "desktop/audio/vosk_speech.h"
#include "desktop/documents/document_process_reader.h"
#include "desktop/linux/command_line.h"
#include "desktop/linux/dbus_input_source.h"
#include "desktop/linux/directory_defaults_store.h"
#include "desktop/linux/posix_file_system.h"
#include "desktop/linux/settings_panes.h"
#include "desktop/linux/single_instance.h"
#include "desktop/linux/standard_output_log.h"
#include "desktop/linux/termination_signals.h"
#include "desktop/linux/thread_serial_queue.h"
#include "desktop/linux/user_folders.h"
#include "desktop/qt/qt_application.h"
#include "desktop/qt/qt_file_picker.h"
#include "desktop/qt/qt_http_session.h"
#include "desktop/qt/qt_image_codec.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/qt/qt_panels.h"
#include "desktop/qt/qt_raw_keys.h"
#include "desktop/qt/qt_screens.h"
#include "desktop/qt/qt_status_item.h"
#include "desktop/qt/qt_windows.h"
#include "desktop/x11/x11_connection.h"
#include "desktop/x11/x11_event_tap.h"
#include "desktop/x11/x11_key_poster.h"
#include "desktop/x11/x11_native_keys.h"
#include "desktop/x11/x11_panel_surroundings.h"
#include "desktop/x11/x11_pasteboard.h"
#include "desktop/x11/x11_screen_capture.h"
#include "desktop/x11/x11_terminal_shortcuts.h"
#include "desktop/x11/x11_workspace.h"
#include "ui/dashboard/dashboard_window_controller.h"
#include "ui/dashboard/donation_page.h"
#include "ui/history/history_page.h"
#include "ui/settings/pages.h"
#include "ui/settings/service_pages.h"

namespace {

using namespace tavrelon;

/// The parts of the desktop without which nothing can be done.
struct Essentials {
    std::unique_ptr<desktop::X11Workspace> workspace;
    std::unique_ptr<desktop::X11Pasteboard> pasteboard;
    std::unique_ptr<desktop::X11KeyPoster> keyPoster;
    std::unique_ptr<desktop::X11ScreenCapture> screenCapture;
    std::unique_ptr<desktop::X11PanelSurroundings> panelSurroundings;
    std::unique_ptr<desktop::X11NativeKeys> nativeKeys;
};

std::expected<Essentials, QString> openDesktop(async::MainLoop& loop, platform::Log& log,
                                               const std::shared_ptr<desktop::PostedKeys>& posted) {
    auto workspace = desktop::X11Workspace::create();
    if (!workspace)
        return std::unexpected(workspace.error());
    auto pasteboard = desktop::X11Pasteboard::create(loop, log);
    if (!pasteboard)
        return std::unexpected(pasteboard.error());
    auto shortcuts = desktop::X11TerminalShortcuts::create(loop, log, **pasteboard);
    if (!shortcuts)
        return std::unexpected(shortcuts.error());
    auto keyPoster = desktop::X11KeyPoster::open(loop, posted, *std::move(shortcuts));
    if (!keyPoster)
        return std::unexpected(keyPoster.error());
    auto screenCapture = desktop::X11ScreenCapture::create(loop, log, **workspace);
    if (!screenCapture)
        return std::unexpected(screenCapture.error());
    auto panelSurroundings = desktop::X11PanelSurroundings::create();
    if (!panelSurroundings)
        return std::unexpected(panelSurroundings.error());
    auto nativeKeys = desktop::X11NativeKeys::create();
    if (!nativeKeys)
        return std::unexpected(nativeKeys.error());
    return Essentials{*std::move(workspace),     *std::move(pasteboard),        *std::move(keyPoster),
                      *std::move(screenCapture), *std::move(panelSurroundings), *std::move(nativeKeys)};
}

/// What is settled before anything is built.
struct Start {
    desktop::StartMode mode;
    desktop::UserFolders folders;
    std::unique_ptr<desktop::SingleInstance> instance;
    std::unique_ptr<desktop::X11Connection> display;  ///< kept until there are others: a server may end with its last
};

std::unexpected<int> endWith(int status, const QString& reason) {
    std::fprintf(stderr, "%s\n", qUtf8Printable(reason));
    return std::unexpected(status);
}

std::expected<Start, int> prepareStart(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QFile::decodeName(argv[i]));
    const auto mode = desktop::startModeFrom(arguments);
    if (!mode)
        return endWith(EX_USAGE, mode.error());
    if (*mode == desktop::StartMode::Version || *mode == desktop::StartMode::Help) {
        std::fputs(
            *mode == desktop::StartMode::Help ? qUtf8Printable(desktop::helpText()) : "Tavrelon " TAVRELON_VERSION "\n",
            stdout);
        return std::unexpected(EX_OK);
    }
    auto folders = desktop::userFolders();
    if (!folders)
        return endWith(EX_CONFIG, QStringLiteral("Tavrelon cannot start: there is no home folder to keep settings in; "
                                                 "set HOME."));
    // The views' toolkit ends the process where it finds no display, so this is asked first.
    auto display = desktop::X11Connection::open();
    if (!display)
        return endWith(EX_UNAVAILABLE, QStringLiteral("Tavrelon cannot start: %1").arg(display.error()));
    auto instance = desktop::SingleInstance::claim(folders->configuration);
    if (instance)
        return Start{*mode, *std::move(folders), *std::move(instance), *std::move(display)};
    if (instance.error() == desktop::SingleInstance::Refusal::Silent)
        return endWith(EX_TEMPFAIL, QStringLiteral("Tavrelon is running already and does not answer."));
    return endWith(EX_OK, QStringLiteral("Tavrelon is running already and shows its dashboard."));
}

app::AppDelegate::Launch launchOf(desktop::StartMode mode) {
    return mode == desktop::StartMode::Background ? app::AppDelegate::Launch::InBackground
                                                  : app::AppDelegate::Launch::WithDashboard;
}

/// Views are drawn by the processor: a graphics stack in software would cost several times the memory and time. They
/// are windows of the X server, which is where all else happens, also in a session that has another way to draw.
void prepareViews() {
    QCoreApplication::setApplicationName(QStringLiteral("Tavrelon"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TAVRELON_VERSION));
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_QUICK_BACKEND", "software");
    QApplication::setQuitOnLastWindowClosed(false);
}

desktop::NativeKeyNames keyNames(desktop::X11NativeKeys& keys) {
    return {[&keys] { keys.refresh(); },
            [&keys](const desktop::NativeKey& key) {
                return keys.eventOf(static_cast<desktop::KeyCode>(key.code), key.modifiers,
                                    key.isPress ? desktop::KeyAction::Press : desktop::KeyAction::Release,
                                    key.isRepeat);
            }};
}

platform::Permissions permissions(const desktop::AtspiAccessibility& accessibility,
                                  platform::ScreenCapture& screenCapture, platform::AudioInput& audioInput) {
    using enum platform::AuthorizationStatus;
    using desktop::SettingsPane;
    return {{[&accessibility] { return accessibility.isBusReachable() ? Authorized : Denied; },
             [] {
                 desktop::switchAccessibilityOn();
                 desktop::openSettingsPane(SettingsPane::Accessibility);
             }},
            {[&screenCapture] { return screenCapture.preflightAccess() ? Authorized : Denied; },
             [] { desktop::openSettingsPane(SettingsPane::ScreenCapture); }},
            {[&audioInput] { return audioInput.hasDefaultDevice() ? audioInput.authorizationStatus() : Denied; },
             [&audioInput] {
                 audioInput.requestAccess();
                 desktop::openSettingsPane(SettingsPane::Microphone);
             }}};
}

/// This desktop behind the ports.
struct Adapters {
    desktop::AtspiAccessibility accessibility;
    desktop::X11EventTap eventTap;
    desktop::DBusInputSource inputSource;
    desktop::QtImageCodec imageCodec;
    desktop::QtHttpSession httpSession;
    desktop::PosixFileSystem fileSystem;
    desktop::ThreadSerialQueues serialQueues;
    desktop::DocumentProcessReader documentReader;
    desktop::PulseAudioInput audioInput;
    desktop::VoskSpeech speech;
    desktop::DirectoryDefaultsStore defaultsStore;
    platform::Platform platform;

    Adapters(async::MainLoop& loop, platform::Log& log, Essentials& essentials,
             const std::shared_ptr<desktop::PostedKeys>& posted, const desktop::UserFolders& folders)
        : accessibility(*essentials.workspace, loop, log),
          eventTap(loop, log, posted),
          inputSource(loop),
          imageCodec(loop),
          httpSession(loop),
          documentReader(loop, QCoreApplication::applicationDirPath() + QStringLiteral("/tavrelon-document-reader")),
          audioInput(loop, log),
          speech(loop, log, folders.applicationSupport),
          defaultsStore(fileSystem, log, folders.configuration),
          platform{loop,
                   log,
                   accessibility,
                   eventTap,
                   *essentials.keyPoster,
                   *essentials.pasteboard,
                   *essentials.workspace,
                   inputSource,
                   *essentials.screenCapture,
                   imageCodec,
                   httpSession,
                   defaultsStore,
                   fileSystem,
                   serialQueues,
                   documentReader,
                   audioInput,
                   speech,
                   folders.applicationSupport} {}
};

/// The dashboard and what it needs of this desktop.
struct Dashboard {
    desktop::QtWindows windows;
    desktop::QtRawKeys keys;
    desktop::QtFilePicker filePicker;
    ui::DashboardWindowController window;

    Dashboard(app::AppState& appState, platform::Platform& platform, Essentials& essentials,
              const desktop::AtspiAccessibility& accessibility)
        : windows(platform.mainLoop, platform.log),
          keys(keyNames(*essentials.nativeKeys)),
          filePicker(platform.mainLoop),
          window(windows, appState.storageManager(),
                 {ui::generalSettingsPage(appState), ui::hotkeysPage(appState, keys),
                  ui::clonePage(appState, platform, filePicker), ui::providersPage(appState, platform),
                  ui::historyPage(appState),
                  ui::privacyPage(appState, permissions(accessibility, platform.screenCapture, platform.audioInput))},
                 [&platform] { platform.workspace.openUrl(ui::donationPage()); }) {}
};

}  // namespace

int main(int argc, char** argv) {
    auto start = prepareStart(argc, argv);
    if (!start)
        return start.error();
    prepareViews();
    desktop::TerminationSignals::block();
    const QApplication application(argc, argv);
    const desktop::TerminationSignals signals([] { QCoreApplication::quit(); });

    desktop::StandardOutputLog log;
    desktop::QtMainLoop loop;
    const auto posted = std::make_shared<desktop::PostedKeys>();
    auto essentials = openDesktop(loop, log, posted);
    if (!essentials) {
        std::fprintf(stderr, "Tavrelon cannot start: %s\n", qUtf8Printable(essentials.error()));
        return EX_UNAVAILABLE;
    }
    start->display.reset();
    Adapters adapters(loop, log, *essentials, posted, start->folders);
    auto& platform = adapters.platform;
    desktop::QtApplication desktopApplication;
    desktop::QtScreens screens;
    desktop::QtStatusItem statusItem;
    auto& x11 = *essentials->panelSurroundings;
    desktop::QtPanels panels(loop, log,
                             {[&x11] { return x11.isComposited(); }, [&x11](quint64 window) { x11.focus(window); }});
    platform::UserInterface userInterface{desktopApplication, panels, screens, statusItem};

    app::AppDelegate delegate(platform, userInterface, generation::ServiceEndpoints::builtIn());
    Dashboard dashboard(delegate.appState(), platform, *essentials, adapters.accessibility);
    delegate.showDashboard = [&dashboard] { dashboard.window.show(); };
    start->instance->setOnCalled([&delegate] { delegate.openDashboard(); });
    delegate.applicationDidFinishLaunching(launchOf(start->mode));
    // To find the field that had the focus before this start takes longest: it is done before the user asks.
    const auto firstLook = loop.after(std::chrono::milliseconds(200), [&adapters] {
        static_cast<void>(adapters.accessibility.copyAttribute(platform::axSystemWideElement(),
                                                               platform::AXAttribute::FocusedUIElement));
    });
    const int status = QCoreApplication::exec();
    delegate.applicationWillTerminate();
    return status;
}
