// Has the grave accent as a hotkey, says so on standard output, and runs until it is killed.
#include <QCoreApplication>
#include <cstdio>

#include "desktop/linux/process/process_signals.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/keys/x11_hotkeys.h"
#include "support/recording_log.h"

int main(int argc, char** argv) {
    using namespace tavrelon;
    desktop::ProcessSignals::block();
    const QCoreApplication application(argc, argv);
    desktop::QtMainLoop loop;
    testing::RecordingLog log;
    desktop::X11Hotkeys hotkeys(loop, log, std::make_shared<desktop::PostedKeys>());
    hotkeys.declare({{keys::defaults::quickAskHotkey, platform::WantedHotkey::Fires::OnPress}});
    const auto start = [&] { return hotkeys.start([](const auto&) {}).has_value(); };
    const desktop::ProcessSignals signals(
        {[] { QCoreApplication::quit(); }, [&] { hotkeys.stop(); }, [&] { start(); }});
    if (!start())
        return 1;
    std::puts("holding");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
