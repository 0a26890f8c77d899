#pragma once

#include "desktop/applications/desktop_entry_catalog.h"
#include "desktop/x11/windows/x11_window_queries.h"
#include "platform/workspace.h"

namespace tavrelon::desktop {

/// The applications behind the windows of an X11 desktop. The process of a window on another machine is unknown. Main
/// thread; every call is bounded by the server's answer or `X11WindowQueries::limit`.
class X11Workspace : public platform::Workspace {
 public:
    /// An empty display name stands for the DISPLAY of the environment. The error says what is missing.
    static std::expected<std::unique_ptr<X11Workspace>, QString> create(
        const QByteArray& displayName = {}, DesktopEntryCatalog entries = DesktopEntryCatalog::ofEnvironment());

    std::optional<platform::RunningApplication> frontmostApplication() override;
    std::optional<platform::FrontmostWindow> frontmostWindow() override;
    std::optional<QString> frontmostWindowTitle() override;
    std::optional<platform::WindowPlace> frontmostWindowPlace() override;
    bool isTerminated(const platform::RunningApplication& application) override;
    bool activate(const platform::RunningApplication& application) override;
    bool hasKeyboard(const platform::RunningApplication& application) override;
    bool openUrl(const QUrl& url) override;

    /// The applications behind all windows, the one with the focus first, then from the front to the back.
    std::vector<platform::RunningApplication> applicationsFromFront();

 private:
    X11Workspace(std::unique_ptr<X11WindowQueries> windows, DesktopEntryCatalog entries)
        : windows_(std::move(windows)), entries_(std::move(entries)) {}

    std::optional<platform::RunningApplication> applicationBehind(xcb_window_t window);

    std::unique_ptr<X11WindowQueries> windows_;
    DesktopEntryCatalog entries_;
};

}  // namespace tavrelon::desktop
