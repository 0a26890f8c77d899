#pragma once

#include "async/main_loop.h"
#include "platform/log.h"
#include "platform/window.h"

namespace tavrelon::desktop {

/// Makes windows whose views are written in QML. Each window has an engine of its own, which goes with it. Main thread.
class QtWindows : public platform::Windows {
 public:
    /// `loop` and `log` outlive all windows.
    QtWindows(async::MainLoop& loop, platform::Log& log) : loop_(loop), log_(log) {}

    std::unique_ptr<platform::Window> create(const platform::WindowDescription& description,
                                             std::function<void()> onClose) override;

 private:
    async::MainLoop& loop_;
    platform::Log& log_;
};

}  // namespace tavrelon::desktop
