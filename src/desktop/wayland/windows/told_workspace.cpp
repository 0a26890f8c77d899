#include "desktop/wayland/windows/told_workspace.h"

#include <algorithm>

#include "desktop/linux/process/process_info.h"
#include "desktop/linux/process/process_launcher.h"
#include "desktop/wayland/keys/native_shortcuts.h"

namespace tavrelon::desktop {

using platform::FrontmostWindow;
using platform::RunningApplication;

void ToldWorkspace::setFront(std::optional<ToldWindow> window) {
    if (!front_ || !window || front_->identifier != window->identifier)
        since_ = std::chrono::steady_clock::now();
    if (window)
        numberOf(*window);
    front_ = std::move(window);
}

void ToldWorkspace::forget(const QString& identifier) {
    numbers_.erase(identifier);
    if (front_ && front_->identifier == identifier)
        front_.reset();
}

quint64 ToldWorkspace::numberOf(const ToldWindow& window) {
    const auto [number, isNew] = numbers_.try_emplace(window.identifier, lastNumber_ + 1);
    if (isNew)
        ++lastNumber_;
    return number->second;
}

std::optional<QString> ToldWorkspace::identifierOf(quint64 number) const {
    const auto window = std::ranges::find_if(numbers_, [&](const auto& each) { return each.second == number; });
    return window == numbers_.end() ? std::nullopt : std::optional(window->first);
}

RunningApplication ToldWorkspace::applicationBehind(const ToldWindow& window) {
    auto application = entries_.applicationOf({.applicationId = window.applicationId,
                                               .windowClass = window.windowClass,
                                               .windowInstance = window.windowInstance,
                                               .executable = executableNameOf(window.processIdentifier)});
    application.processIdentifier = window.processIdentifier;
    application.windowIdentifier = numberOf(window);
    return application;
}

std::optional<RunningApplication> ToldWorkspace::frontmostApplication() {
    return front_ ? std::optional(applicationBehind(*front_)) : std::nullopt;
}

std::optional<FrontmostWindow> ToldWorkspace::frontmostWindow() {
    if (!front_)
        return std::nullopt;
    return FrontmostWindow{.identifier = numberOf(*front_),
                           .processIdentifier = front_->processIdentifier,
                           .kind = nativeWindowKindOf(front_->name(), front_->windowInstance)};
}

std::optional<QString> ToldWorkspace::frontmostWindowTitle() {
    return front_ ? std::optional(front_->title) : std::nullopt;
}

std::optional<platform::WindowPlace> ToldWorkspace::frontmostWindowPlace() {
    return front_ ? std::optional(front_->place) : std::nullopt;
}

bool ToldWorkspace::isTerminated(const RunningApplication& application) {
    if (application.processIdentifier != 0 && !isProcessRunning(application.processIdentifier))
        return true;
    return application.windowIdentifier != 0 && !identifierOf(application.windowIdentifier);
}

bool ToldWorkspace::activate(const RunningApplication& application) {
    const auto window = identifierOf(application.windowIdentifier);
    return window && activateWindow(*window);
}

bool ToldWorkspace::hasKeyboard(const RunningApplication& application) {
    return front_ && numberOf(*front_) == application.windowIdentifier &&
           std::chrono::steady_clock::now() - since_ >= untilKeyboard_;
}

bool ToldWorkspace::openUrl(const QUrl& url) {
    return openInDesktop(url);
}

}  // namespace tavrelon::desktop
