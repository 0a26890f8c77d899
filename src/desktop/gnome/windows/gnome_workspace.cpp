#include "desktop/gnome/windows/gnome_workspace.h"

namespace tavrelon::desktop {

namespace {

/// A window is told before its surface has the keyboard.
constexpr std::chrono::milliseconds untilKeyboard{4};

}  // namespace

GnomeWorkspace::GnomeWorkspace(std::shared_ptr<ShellConnection> shell, DesktopEntryCatalog entries)
    : ToldWorkspace(std::move(entries), untilKeyboard), shell_(std::move(shell)) {
    shell_->listen(QStringLiteral("front"), lifetime_.guard([this](const text::Json& event) { told(event); }));
    shell_->listen(QStringLiteral("gone"), lifetime_.guard([this](const text::Json& event) {
        forget(text::stringFrom(text::required(event, "window")));
    }));
}

void GnomeWorkspace::told(const text::Json& event) try {
    const auto* window = text::find(event, "window");
    setFront(window ? std::optional(windowIn(*window)) : std::nullopt);
} catch (const text::JsonError&) {
    setFront(std::nullopt);  // told in another way than is known here: none that could be served
}

std::vector<GnomeWorkspace::Listed> GnomeWorkspace::windows() try {
    const auto answer = shell_->ask("windows");
    std::vector<Listed> listed;
    if (!answer)
        return listed;
    for (const auto& each : text::arrayFrom(text::required(*answer, "windows"))) {
        auto window = windowIn(each);
        const auto number = numberOf(window);
        listed.push_back({std::move(window), number, text::boolFrom(text::required(each, "isShown"))});
    }
    return listed;
} catch (const text::JsonError&) {
    return {};
}

bool GnomeWorkspace::activateWindow(const QString& identifier) try {
    const auto answer = shell_->ask("activate", {{"window", text::toJson(identifier)}});
    return answer && text::boolFrom(text::required(*answer, "isDone"));
} catch (const text::JsonError&) {
    return false;
}

}  // namespace tavrelon::desktop
