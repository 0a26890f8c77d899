#include "desktop/wayland/sway/sway_workspace.h"

#include <algorithm>

#include "desktop/linux/process/process_info.h"
#include "desktop/linux/process/process_launcher.h"
#include "desktop/wayland/keys/native_shortcuts.h"

namespace tavrelon::desktop {

using platform::FrontmostWindow;
using platform::RunningApplication;

std::expected<std::unique_ptr<SwayWorkspace>, QString> SwayWorkspace::create(DesktopEntryCatalog entries) {
    auto ipc = SwayIpc::open();
    if (!ipc)
        return std::unexpected(ipc.error());
    return std::unique_ptr<SwayWorkspace>(new SwayWorkspace(*std::move(ipc), std::move(entries)));
}

std::optional<std::vector<SwayWindow>> SwayWorkspace::windows() {
    const auto tree = ipc_->ask(SwayMessage::GetTree);
    if (!tree)
        return std::nullopt;
    try {
        auto found = windowsOf(*tree);
        std::ranges::partition(found, &SwayWindow::isFocused);
        return found;
    } catch (const text::JsonError&) {
        return std::nullopt;
    }
}

std::vector<SwayOutput> SwayWorkspace::outputs() {
    const auto answer = ipc_->ask(SwayMessage::GetOutputs);
    if (!answer)
        return {};
    try {
        auto found = outputsOf(*answer);
        std::ranges::partition(found, &SwayOutput::isFocused);
        return found;
    } catch (const text::JsonError&) {
        return {};
    }
}

std::optional<SwayWindow> SwayWorkspace::focusedWindow() {
    const auto all = windows();
    return all && !all->empty() && all->front().isFocused ? std::optional(all->front()) : std::nullopt;
}

std::optional<RunningApplication> SwayWorkspace::frontmostApplication() {
    const auto window = focusedWindow();
    return window ? std::optional(applicationBehind(*window)) : std::nullopt;
}

RunningApplication SwayWorkspace::applicationBehind(const SwayWindow& window) {
    auto application = entries_.applicationOf({.applicationId = window.applicationId,
                                               .windowClass = window.windowClass,
                                               .windowInstance = window.windowInstance,
                                               .executable = executableNameOf(window.processIdentifier)});
    application.processIdentifier = window.processIdentifier;
    application.windowIdentifier = window.identifier;
    return application;
}

std::optional<FrontmostWindow> SwayWorkspace::frontmostWindow() {
    const auto window = focusedWindow();
    if (!window)
        return std::nullopt;
    return FrontmostWindow{.identifier = window->identifier,
                           .processIdentifier = window->processIdentifier,
                           .kind = nativeWindowKindOf(window->name(), window->windowInstance)};
}

std::optional<QString> SwayWorkspace::frontmostWindowTitle() {
    const auto window = focusedWindow();
    return window ? window->title : std::nullopt;
}

std::optional<platform::WindowPlace> SwayWorkspace::frontmostWindowPlace() {
    const auto window = focusedWindow();
    if (!window)
        return std::nullopt;
    auto place = window->place;
    const QRect frame(place.x, place.y, place.width, place.height);
    // An X11 window knows nothing of the scale.
    if (place.countsFromItself)
        for (const auto& output : outputs())
            if (output.area.contains(frame.center()))
                place.scale = output.scale;
    return place;
}

bool SwayWorkspace::isTerminated(const RunningApplication& application) {
    if (application.processIdentifier != 0 && !isProcessRunning(application.processIdentifier))
        return true;
    if (application.windowIdentifier == 0)
        return false;
    const auto all = windows();
    return all && std::ranges::find(*all, application.windowIdentifier, &SwayWindow::identifier) == all->end();
}

bool SwayWorkspace::activate(const RunningApplication& application) {
    return application.windowIdentifier != 0 &&
           ipc_->run(QStringLiteral("[con_id=%1] focus").arg(application.windowIdentifier));
}

bool SwayWorkspace::hasKeyboard(const RunningApplication& application) {
    const auto window = focusedWindow();
    return window && window->identifier == application.windowIdentifier;
}

bool SwayWorkspace::openUrl(const QUrl& url) {
    return openInDesktop(url);
}

}  // namespace tavrelon::desktop
