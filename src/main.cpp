// Picks the adapters of this desktop, hands them to the application, and runs its loop.
#include <QApplication>
#include <cstdio>
#include <expected>

#include "app/app_delegate.h"
#include "desktop/atspi/atspi_accessibility.h"
#include "desktop/documents/document_process_reader.h"
#include "desktop/linux/dbus_input_source.h"
#include "desktop/linux/directory_defaults_store.h"
#include "desktop/linux/posix_file_system.h"
#include "desktop/linux/standard_output_log.h"
#include "desktop/linux/termination_signals.h"
#include "desktop/linux/thread_serial_queue.h"
#include "desktop/linux/user_folders.h"
#include "desktop/qt/qt_application.h"
#include "desktop/qt/qt_http_session.h"
#include "desktop/qt/qt_image_codec.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/qt/qt_panels.h"
#include "desktop/qt/qt_screens.h"
#include "desktop/qt/qt_status_item.h"
#include "desktop/x11/x11_event_tap.h"
#include "desktop/x11/x11_key_poster.h"
#include "desktop/x11/x11_panel_surroundings.h"
#include "desktop/x11/x11_pasteboard.h"
#include "desktop/x11/x11_screen_capture.h"
#include "desktop/x11/x11_terminal_shortcuts.h"
#include "desktop/x11/x11_workspace.h"

namespace {

using namespace tavrelon;

/// The parts of the desktop without which nothing can be done.
struct Essentials {
    desktop::UserFolders folders;
    std::unique_ptr<desktop::X11Workspace> workspace;
    std::unique_ptr<desktop::X11Pasteboard> pasteboard;
    std::unique_ptr<desktop::X11KeyPoster> keyPoster;
    std::unique_ptr<desktop::X11ScreenCapture> screenCapture;
    std::unique_ptr<desktop::X11PanelSurroundings> panelSurroundings;
};

std::expected<Essentials, QString> openDesktop(async::MainLoop& loop, platform::Log& log,
                                               const std::shared_ptr<desktop::PostedKeys>& posted) {
    auto folders = desktop::userFolders();
    if (!folders)
        return std::unexpected(QStringLiteral("There is no home folder to keep settings in; set HOME."));
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
    return Essentials{*std::move(folders),   *std::move(workspace),     *std::move(pasteboard),
                      *std::move(keyPoster), *std::move(screenCapture), *std::move(panelSurroundings)};
}

/// Views are drawn by the processor: a graphics stack in software would cost several times the memory and time.
void prepareViews() {
    qputenv("QT_QUICK_BACKEND", "software");
    QApplication::setQuitOnLastWindowClosed(false);
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication::setApplicationName(QStringLiteral("Tavrelon"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TAVRELON_VERSION));
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
        return 1;
    }
    desktop::AtspiAccessibility accessibility(*essentials->workspace, loop, log);
    desktop::X11EventTap eventTap(loop, log, posted);
    desktop::DBusInputSource inputSource(loop);
    desktop::QtImageCodec imageCodec(loop);
    desktop::QtHttpSession httpSession(loop);
    desktop::PosixFileSystem fileSystem;
    desktop::ThreadSerialQueues serialQueues;
    desktop::DocumentProcessReader documentReader(
        loop, QCoreApplication::applicationDirPath() + QStringLiteral("/tavrelon-document-reader"));
    desktop::DirectoryDefaultsStore defaultsStore(fileSystem, essentials->folders.configuration);
    platform::Platform platform{loop,
                                log,
                                accessibility,
                                eventTap,
                                *essentials->keyPoster,
                                *essentials->pasteboard,
                                *essentials->workspace,
                                inputSource,
                                *essentials->screenCapture,
                                imageCodec,
                                httpSession,
                                defaultsStore,
                                fileSystem,
                                serialQueues,
                                documentReader,
                                essentials->folders.applicationSupport};
    desktop::QtApplication desktopApplication;
    desktop::QtScreens screens;
    desktop::QtStatusItem statusItem;
    auto& x11 = *essentials->panelSurroundings;
    desktop::QtPanels panels(loop, log,
                             {[&x11] { return x11.isComposited(); }, [&x11](quint64 window) { x11.focus(window); }});
    platform::UserInterface userInterface{desktopApplication, panels, screens, statusItem};

    app::AppDelegate delegate(platform, userInterface, generation::ServiceEndpoints::builtIn());
    delegate.applicationDidFinishLaunching();
    // To find the field that had the focus before this start takes longest: it is done before the user asks.
    const auto firstLook = loop.after(std::chrono::milliseconds(200), [&accessibility] {
        static_cast<void>(
            accessibility.copyAttribute(platform::axSystemWideElement(), platform::AXAttribute::FocusedUIElement));
    });
    const int status = QCoreApplication::exec();
    delegate.applicationWillTerminate();
    return status;
}
