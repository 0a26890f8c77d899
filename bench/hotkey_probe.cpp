// Has one hotkey, and prints the time of the monotonic clock, in nanoseconds, at which each press came to its handler.
#include <QCoreApplication>
#include <chrono>
#include <cstdio>

#include "desktop/linux/process/standard_output_log.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/keys/x11_hotkeys.h"

int main(int argc, char** argv) {
    using namespace tavrelon;
    const QCoreApplication application(argc, argv);
    desktop::QtMainLoop loop;
    desktop::StandardOutputLog log;
    desktop::X11Hotkeys hotkeys(loop, log, std::make_shared<desktop::PostedKeys>());
    const auto tell = [&](auto time) {
        std::printf("%lld\n", static_cast<long long>(time.time_since_epoch() / std::chrono::nanoseconds(1)));
        std::fflush(stdout);
    };
    hotkeys.declare({{keys::defaults::toggleHotkey, platform::WantedHotkey::Fires::OnPress}});
    if (!hotkeys.start([&](const auto&) { tell(loop.now()); }))
        return 1;
    tell(loop.now());
    return QCoreApplication::exec();
}
