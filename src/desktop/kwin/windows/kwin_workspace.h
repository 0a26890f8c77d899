#pragma once

#include "desktop/kwin/windows/kwin_script.h"
#include "desktop/wayland/windows/told_workspace.h"

namespace tavrelon::desktop {

/// The windows of KWin. Main thread; every call is bounded by `KWinBus::callLimit`.
class KWinWorkspace : public ToldWorkspace {
 public:
    /// The error says what is missing.
    static std::expected<std::unique_ptr<KWinWorkspace>, QString> create(
        std::shared_ptr<KWinBus> bus, DesktopEntryCatalog entries = DesktopEntryCatalog::ofEnvironment());

 private:
    KWinWorkspace(std::shared_ptr<KWinBus> bus, DesktopEntryCatalog entries);

    void activated(const QString& told);
    bool activateWindow(const QString& identifier) override;

    std::shared_ptr<KWinBus> bus_;
    std::unique_ptr<KWinScript> script_;
};

}  // namespace tavrelon::desktop
