#include "desktop/kwin/windows/kwin_workspace.h"

#include <algorithm>

#include "desktop/applications/application_identifiers.h"
#include "desktop/linux/process/process_info.h"
#include "desktop/linux/process/process_launcher.h"
#include "desktop/wayland/keys/native_shortcuts.h"
#include "text/json.h"

namespace tavrelon::desktop {

using platform::FrontmostWindow;
using platform::RunningApplication;

namespace {

/// A window is told one to two milliseconds before the keyboard is there.
constexpr std::chrono::milliseconds untilKeyboard{4};

std::optional<QString> notEmpty(const QString& text) {
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

}  // namespace

std::expected<std::unique_ptr<KWinWorkspace>, QString> KWinWorkspace::create(std::shared_ptr<KWinBus> bus,
                                                                             DesktopEntryCatalog entries) {
    std::unique_ptr<KWinWorkspace> workspace(new KWinWorkspace(bus, std::move(entries)));
    auto script = KWinScript::start(
        std::move(bus), {.active = [self = workspace.get()](const QString& told) { self->activated(told); },
                         .gone = [self = workspace.get()](const QString& identifier) { self->gone(identifier); }});
    if (!script)
        return std::unexpected(script.error());
    workspace->script_ = *std::move(script);
    return workspace;
}

void KWinWorkspace::activated(const QString& told) {
    std::optional<KWinWindow> window;
    try {
        window = windowIn(told);
    } catch (const text::JsonError&) {
        window.reset();  // told in another way than is known here: none that could be served
    }
    if (window && !numbers_.contains(window->identifier))
        numbers_[window->identifier] = ++lastNumber_;
    if (!front_ || !window || front_->identifier != window->identifier)
        since_ = std::chrono::steady_clock::now();
    front_ = std::move(window);
}

void KWinWorkspace::gone(const QString& identifier) {
    numbers_.erase(identifier);
    if (front_ && front_->identifier == identifier)
        front_.reset();
}

quint64 KWinWorkspace::numberOf(const KWinWindow& window) const {
    return numbers_.at(window.identifier);
}

std::optional<RunningApplication> KWinWorkspace::frontmostApplication() {
    if (!front_)
        return std::nullopt;
    const auto entry = entries_.find({.applicationId = front_->applicationId,
                                      .windowClass = front_->windowClass,
                                      .windowInstance = front_->windowInstance,
                                      .executable = executableNameOf(front_->processIdentifier)});
    return RunningApplication{
        .processIdentifier = front_->processIdentifier,
        .bundleIdentifier = bundleIdentifierOf(
            {entry ? entry->id : QString(), front_->applicationId, front_->windowClass, front_->windowInstance}),
        .localizedName = entry ? entry->name : notEmpty(front_->name()),
        .windowIdentifier = numberOf(*front_)};
}

std::optional<FrontmostWindow> KWinWorkspace::frontmostWindow() {
    if (!front_)
        return std::nullopt;
    return FrontmostWindow{.identifier = numberOf(*front_),
                           .processIdentifier = front_->processIdentifier,
                           .kind = nativeWindowKindOf(front_->name(), front_->windowInstance)};
}

std::optional<QString> KWinWorkspace::frontmostWindowTitle() {
    return front_ ? std::optional(front_->title) : std::nullopt;
}

std::optional<platform::WindowPlace> KWinWorkspace::frontmostWindowPlace() {
    return front_ ? std::optional(front_->place) : std::nullopt;
}

bool KWinWorkspace::isTerminated(const RunningApplication& application) {
    if (application.processIdentifier != 0 && !isProcessRunning(application.processIdentifier))
        return true;
    return application.windowIdentifier != 0 && std::ranges::none_of(numbers_, [&](const auto& window) {
               return window.second == application.windowIdentifier;
           });
}

bool KWinWorkspace::activate(const RunningApplication& application) {
    const auto window =
        std::ranges::find_if(numbers_, [&](const auto& each) { return each.second == application.windowIdentifier; });
    // What a search among the open windows would do with its result.
    return window != numbers_.end() &&
           bus_->call({.service = QStringLiteral("org.kde.KWin"),
                       .path = QStringLiteral("/WindowsRunner"),
                       .interface = QStringLiteral("org.kde.krunner1")},
                      QStringLiteral("Run"), {QStringLiteral("0_") + window->first, QString()});
}

bool KWinWorkspace::hasKeyboard(const RunningApplication& application) {
    return front_ && numberOf(*front_) == application.windowIdentifier &&
           std::chrono::steady_clock::now() - since_ >= untilKeyboard;
}

bool KWinWorkspace::openUrl(const QUrl& url) {
    return openInDesktop(url);
}

}  // namespace tavrelon::desktop
