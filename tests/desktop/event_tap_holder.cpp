// Holds the grave key, says so on standard output, and drops it until it is killed.
#include <QCoreApplication>
#include <cstdio>

#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/x11_event_tap.h"
#include "support/recording_log.h"

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    tavrelon::desktop::QtMainLoop loop;
    tavrelon::testing::RecordingLog log;
    tavrelon::desktop::X11EventTap tap(loop, log, std::make_shared<tavrelon::desktop::PostedKeys>());
    tap.setHotkeys({tavrelon::keys::defaults::quickAskHotkey});
    if (!tap.start([](const auto&) { return tavrelon::platform::TapVerdict::Drop; }))
        return 1;
    std::puts("holding");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
