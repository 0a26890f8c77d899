#pragma once

#include <QObject>

#include "async/main_loop.h"

namespace tavrelon::desktop {

/// The main loop on the Qt event loop of the thread that makes it. Blocks keep their order; timers are precise to a
/// millisecond. Destroying it drops what has not run.
class QtMainLoop : public QObject, public async::MainLoop {
 public:
    QtMainLoop();
    ~QtMainLoop() override;

    void post(Block block) override;
    async::Timer after(std::chrono::nanoseconds delay, Block block) override;
    async::Instant now() const override { return std::chrono::steady_clock::now(); }
    std::chrono::system_clock::time_point wallTime() const override { return std::chrono::system_clock::now(); }

 protected:
    bool event(QEvent* event) override;
};

}  // namespace tavrelon::desktop
