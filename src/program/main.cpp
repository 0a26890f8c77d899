// Picks the adapters of this desktop, hands them to the application, and runs its loop.
#include <sysexits.h>

#include <QApplication>
#include <cstdio>

#include "app/app_delegate.h"
#include "desktop/linux/process/private_memory.h"
#include "desktop/linux/process/process_signals.h"
#include "desktop/linux/process/standard_output_log.h"
#include "desktop/qt/qt_application.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/qt/qt_panels.h"
#include "desktop/qt/qt_screens.h"
#include "desktop/qt/qt_status_item.h"
#include "hotkeys/hotkey_table.h"
#include "program/dashboard.h"
#include "program/silent_buses.h"
#include "program/start.h"
#include "program/views.h"

namespace {

using namespace tavrelon;

app::AppDelegate::Launch launchOf(desktop::StartMode mode) {
    return mode == desktop::StartMode::Background ? app::AppDelegate::Launch::InBackground
                                                  : app::AppDelegate::Launch::WithDashboard;
}

}  // namespace

int main(int argc, char** argv) {
    desktop::keepMemoryPrivate();
    auto start = program::prepareStart(argc, argv);
    if (!start)
        return start.error();
    program::prepareViews();
    desktop::StandardOutputLog log;
    program::avoidSilentBuses(log);
    desktop::ProcessSignals::block();
    const QApplication application(argc, argv);

    desktop::QtMainLoop loop;
    auto windowing = desktop::openWindowingSystem(loop, log);
    if (!windowing) {
        std::fprintf(stderr, "Tavrelon cannot start: %s\n", qUtf8Printable(windowing.error()));
        return EX_UNAVAILABLE;
    }
    start->display.reset();
    windowing->letGoOfLeftOverModifiers();
    desktop::SessionAdapters session(loop, log, *std::move(windowing), start->folders);
    desktop::QtApplication desktopApplication;
    desktop::QtScreens screens;
    desktop::QtStatusItem statusItem;
    desktop::QtPanels panels(loop, log, session.windowing.panelSurroundings);
    platform::UserInterface userInterface{desktopApplication, panels, screens, statusItem};

    app::AppDelegate delegate(session.platform, userInterface, generation::ServiceEndpoints::builtIn());
    program::Dashboard dashboard(delegate.appState(), session);
    delegate.showDashboard = [&dashboard] { dashboard.window.show(); };
    start->instance->setOnCalled([&delegate](const QString& wanted) {
        if (const auto action = hotkeys::actionNamed(wanted))
            delegate.appState().hotkeyManager().trigger(*action);
        else
            delegate.openDashboard();
    });
    const desktop::ProcessSignals signals({[] { QCoreApplication::quit(); },
                                           [&] {
                                               delegate.suspend();
                                               session.windowing.letGoOfModifiers();
                                           },
                                           [&delegate] { delegate.resume(); }});
    delegate.applicationDidFinishLaunching(launchOf(start->mode));
    // To find the field that had the focus before this start takes longest: it is done before the user asks.
    const auto firstLook = loop.after(std::chrono::milliseconds(200), [&session] {
        static_cast<void>(session.accessibility.copyAttribute(platform::axSystemWideElement(),
                                                              platform::AXAttribute::FocusedUIElement));
    });
    const int status = QCoreApplication::exec();
    delegate.applicationWillTerminate();
    return status;
}
