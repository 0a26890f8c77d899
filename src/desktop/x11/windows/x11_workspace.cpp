#include "desktop/x11/windows/x11_workspace.h"

#include <unistd.h>

#include "desktop/applications/terminal_shortcuts.h"
#include "desktop/linux/process/process_info.h"
#include "desktop/linux/process/process_launcher.h"

namespace tavrelon::desktop {

using platform::RunningApplication;

namespace {

/// The process behind a window; 0 where it is unknown. A number from another machine would name a stranger here. Some
/// programs give no machine: they are taken to run here if such a process exists.
qint64 trustedProcess(const X11WindowProperties& window) {
    const bool here = window.machine.isEmpty() || isThisMachine(window.machine);
    return here && isProcessRunning(window.processIdentifier) ? window.processIdentifier : 0;
}

}  // namespace

std::expected<std::unique_ptr<X11Workspace>, QString> X11Workspace::create(const QByteArray& displayName,
                                                                           DesktopEntryCatalog entries) {
    auto windows = X11WindowQueries::open(displayName);
    if (!windows)
        return std::unexpected(windows.error());
    return std::unique_ptr<X11Workspace>(new X11Workspace(std::move(*windows), std::move(entries)));
}

std::optional<RunningApplication> X11Workspace::frontmostApplication() {
    const auto window = windows_->activeWindow();
    return window == XCB_NONE ? std::nullopt : applicationBehind(window);
}

std::vector<RunningApplication> X11Workspace::applicationsFromFront() {
    auto clients = windows_->clientsFromFront();
    if (const auto active = windows_->activeWindow(); active != XCB_NONE) {
        std::erase(clients, active);
        clients.insert(clients.begin(), active);
    }
    std::vector<RunningApplication> found;
    for (const auto window : clients)
        if (auto application = applicationBehind(window))
            found.push_back(*std::move(application));
    return found;
}

std::optional<RunningApplication> X11Workspace::applicationBehind(xcb_window_t window) {
    const auto found = windows_->properties(window);
    if (!found.exists)
        return std::nullopt;
    const auto process = trustedProcess(found);
    auto application = entries_.applicationOf({.applicationId = found.applicationId,
                                               .windowClass = found.windowClass,
                                               .windowInstance = found.windowInstance,
                                               .executable = process == 0 ? QString() : executableNameOf(process)});
    application.processIdentifier = process;
    application.windowIdentifier = window;
    return application;
}

std::optional<platform::FrontmostWindow> X11Workspace::frontmostWindow() {
    const auto window = windows_->activeWindow();
    if (window == XCB_NONE)
        return std::nullopt;
    const auto found = windows_->properties(window);
    return platform::FrontmostWindow{.identifier = window,
                                     .processIdentifier = trustedProcess(found),
                                     .kind = windowKindOf(found.windowClass, found.windowInstance)};
}

std::optional<QString> X11Workspace::frontmostWindowTitle() {
    const auto window = windows_->activeWindow();
    return window == XCB_NONE ? std::nullopt : windows_->title(window);
}

std::optional<platform::WindowPlace> X11Workspace::frontmostWindowPlace() {
    const auto window = windows_->activeWindow();
    return window == XCB_NONE ? std::nullopt : windows_->place(window);
}

bool X11Workspace::isTerminated(const RunningApplication& application) {
    if (application.processIdentifier != 0 && !isProcessRunning(application.processIdentifier))
        return true;
    return application.windowIdentifier != 0 &&
           windows_->isGone(static_cast<xcb_window_t>(application.windowIdentifier));
}

bool X11Workspace::activate(const RunningApplication& application) {
    return application.windowIdentifier != 0 &&
           windows_->requestActivation(static_cast<xcb_window_t>(application.windowIdentifier));
}

bool X11Workspace::hasKeyboard(const RunningApplication& application) {
    return application.windowIdentifier != 0 &&
           windows_->hasInputFocus(static_cast<xcb_window_t>(application.windowIdentifier));
}

bool X11Workspace::openUrl(const QUrl& url) {
    return openInDesktop(url);
}

}  // namespace tavrelon::desktop
