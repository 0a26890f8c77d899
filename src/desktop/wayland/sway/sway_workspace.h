#pragma once

#include "desktop/applications/desktop_entry_catalog.h"
#include "desktop/wayland/sway/sway_ipc.h"
#include "desktop/wayland/sway/sway_tree.h"
#include "platform/workspace.h"

namespace tavrelon::desktop {

/// The applications behind the windows of sway, native ones and those of X. Main thread; every call is bounded by
/// `SwayIpc::limit`.
class SwayWorkspace : public platform::Workspace {
 public:
    /// The error says what is missing.
    static std::expected<std::unique_ptr<SwayWorkspace>, QString> create(
        DesktopEntryCatalog entries = DesktopEntryCatalog::ofEnvironment());

    std::optional<platform::RunningApplication> frontmostApplication() override;
    std::optional<platform::FrontmostWindow> frontmostWindow() override;
    std::optional<QString> frontmostWindowTitle() override;
    std::optional<platform::WindowPlace> frontmostWindowPlace() override;
    bool isTerminated(const platform::RunningApplication& application) override;
    bool activate(const platform::RunningApplication& application) override;
    bool hasKeyboard(const platform::RunningApplication& application) override;
    bool openUrl(const QUrl& url) override;

    /// The window with the keyboard. None while a panel or a screen's lock has it.
    std::optional<SwayWindow> focusedWindow();
    /// All windows, that with the keyboard first; nothing where sway does not answer.
    std::optional<std::vector<SwayWindow>> windows();
    /// The displays that are on, the one that is worked on first; none where sway does not answer.
    std::vector<SwayOutput> outputs();
    platform::RunningApplication applicationBehind(const SwayWindow& window);

 private:
    SwayWorkspace(std::unique_ptr<SwayIpc> ipc, DesktopEntryCatalog entries)
        : ipc_(std::move(ipc)), entries_(std::move(entries)) {}

    std::unique_ptr<SwayIpc> ipc_;
    DesktopEntryCatalog entries_;
};

}  // namespace tavrelon::desktop
