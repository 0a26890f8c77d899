#include "support/fake_workspace.h"

#include <algorithm>

namespace tavrelon::testing {

using platform::RunningApplication;

std::optional<RunningApplication> FakeWorkspace::frontmostApplication() {
    if (!frontmost_)
        return std::nullopt;
    auto application = windows_[*frontmost_].application;
    if (!tellsProcess)
        application.processIdentifier = 0;
    return application;
}

std::optional<platform::FrontmostWindow> FakeWorkspace::frontmostWindow() {
    if (!frontmost_)
        return std::nullopt;
    const auto& application = windows_[*frontmost_].application;
    return platform::FrontmostWindow{application.windowIdentifier, tellsProcess ? application.processIdentifier : 0,
                                     windowKind};
}

std::optional<QString> FakeWorkspace::frontmostWindowTitle() {
    if (!frontmost_)
        return std::nullopt;
    return windows_[*frontmost_].title;
}

bool FakeWorkspace::isOwnWindowInFront() {
    const auto front = frontmostApplication();
    return front && front->processIdentifier == ownProcessIdentifier;
}

bool FakeWorkspace::isTerminated(const RunningApplication& application) {
    return !indexOf(application);
}

bool FakeWorkspace::activate(const RunningApplication& application) {
    const auto index = indexOf(application);
    if (!index)
        return false;
    activated_.push_back(application);
    frontmost_ = index;
    return true;
}

bool FakeWorkspace::hasKeyboard(const RunningApplication& application) {
    return keyboardFollows_ && frontmost_ && frontmost_ == indexOf(application);
}

bool FakeWorkspace::openUrl(const QUrl& url) {
    if (!url.isValid())
        return false;
    openedUrls_.push_back(url);
    return true;
}

void FakeWorkspace::focus(const RunningApplication& application, std::optional<QString> title) {
    auto index = indexOf(application);
    if (!index) {
        windows_.push_back({.application = application, .title = std::nullopt});
        index = windows_.size() - 1;
    }
    windows_[*index] = {.application = application, .title = std::move(title)};
    frontmost_ = index;
}

void FakeWorkspace::focusOwnWindow() {
    focus({.processIdentifier = ownProcessIdentifier,
           .bundleIdentifier = QStringLiteral("tavrelon"),
           .localizedName = QStringLiteral("Tavrelon"),
           .windowIdentifier = 1},
          QStringLiteral("Tavrelon"));
}

void FakeWorkspace::terminate(const RunningApplication& application) {
    const auto front = frontmostApplication();
    frontmost_.reset();
    std::erase_if(windows_, [&](const Window& window) {
        return window.application.processIdentifier == application.processIdentifier;
    });
    if (front)
        frontmost_ = indexOf(*front);
}

std::optional<std::size_t> FakeWorkspace::indexOf(const RunningApplication& application) const {
    const auto found = std::ranges::find_if(windows_, [&](const Window& window) {
        return window.application.processIdentifier == application.processIdentifier &&
               window.application.windowIdentifier == application.windowIdentifier;
    });
    if (found == windows_.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - windows_.begin());
}

}  // namespace tavrelon::testing
