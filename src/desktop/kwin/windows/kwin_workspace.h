#pragma once

#include <chrono>
#include <map>

#include "desktop/applications/desktop_entry_catalog.h"
#include "desktop/kwin/windows/kwin_script.h"
#include "desktop/kwin/windows/kwin_window.h"

namespace tavrelon::desktop {

/// The applications behind the windows of KWin, native ones and those of X, as the script tells them. Main thread;
/// every call is bounded by `KWinBus::callLimit`.
class KWinWorkspace : public platform::Workspace {
 public:
    /// The error says what is missing.
    static std::expected<std::unique_ptr<KWinWorkspace>, QString> create(
        std::shared_ptr<KWinBus> bus, DesktopEntryCatalog entries = DesktopEntryCatalog::ofEnvironment());

    std::optional<platform::RunningApplication> frontmostApplication() override;
    std::optional<platform::FrontmostWindow> frontmostWindow() override;
    std::optional<QString> frontmostWindowTitle() override;
    std::optional<platform::WindowPlace> frontmostWindowPlace() override;
    bool isTerminated(const platform::RunningApplication& application) override;
    bool activate(const platform::RunningApplication& application) override;
    bool hasKeyboard(const platform::RunningApplication& application) override;
    bool openUrl(const QUrl& url) override;

    /// The window with the keyboard. None while a panel or a screen's lock has it.
    const std::optional<KWinWindow>& focusedWindow() const { return front_; }

 private:
    KWinWorkspace(std::shared_ptr<KWinBus> bus, DesktopEntryCatalog entries)
        : bus_(std::move(bus)), entries_(std::move(entries)) {}

    void activated(const QString& told);
    void gone(const QString& identifier);
    quint64 numberOf(const KWinWindow& window) const;

    std::shared_ptr<KWinBus> bus_;
    DesktopEntryCatalog entries_;
    std::optional<KWinWindow> front_;
    std::chrono::steady_clock::time_point since_;  ///< when `front_` became another
    std::map<QString, quint64> numbers_;           ///< of the windows that were in front and are still there
    quint64 lastNumber_ = 0;
    std::unique_ptr<KWinScript> script_;
};

}  // namespace tavrelon::desktop
