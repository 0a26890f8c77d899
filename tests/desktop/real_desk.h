#pragma once

#include <QTemporaryDir>

#include "desktop/qt/qt_main_loop.h"
#include "desktop/session/session_adapters.h"
#include "support/input_desk.h"

namespace tavrelon::testing {

struct DesktopGround {
    QTemporaryDir data;
    desktop::QtMainLoop loop;
    RecordingLog log;
};

/// The program's adapters on this desktop, over a folder of their own.
struct DesktopAdapters : DesktopGround, desktop::SessionAdapters {
    DesktopAdapters()
        : SessionAdapters(loop, log, desktop::openWindowingSystem(loop, log).value(), {data.path(), data.path()},
                          {nullptr, std::chrono::seconds(5)}) {}  // on however busy a machine
};

/// The input core at work on this desktop.
struct RealDesk : DesktopAdapters, InputCore {
    RealDesk() : InputCore(DesktopAdapters::platform) {}
};

}  // namespace tavrelon::testing
