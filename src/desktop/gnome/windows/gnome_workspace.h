#pragma once

#include <memory>

#include "async/lifetime.h"
#include "desktop/gnome/shell_connection.h"
#include "desktop/wayland/windows/told_workspace.h"

namespace tavrelon::desktop {

/// The windows of GNOME's shell. Main thread; every call is bounded by `ShellConnection::limit`.
class GnomeWorkspace : public ToldWorkspace {
 public:
    explicit GnomeWorkspace(std::shared_ptr<ShellConnection> shell,
                            DesktopEntryCatalog entries = DesktopEntryCatalog::ofEnvironment());

    /// The windows there are, as `ScreenCapture` orders them, each with whether it is on the screen.
    struct Listed {
        ToldWindow window;
        quint64 number;
        bool isShown;
    };
    std::vector<Listed> windows();

 private:
    void told(const text::Json& event);
    bool activateWindow(const QString& identifier) override;

    std::shared_ptr<ShellConnection> shell_;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::desktop
