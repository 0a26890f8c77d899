#include "desktop/kwin/windows/kwin_workspace.h"

#include "text/json.h"

namespace tavrelon::desktop {

namespace {

/// A window is told one to two milliseconds before the keyboard is there.
constexpr std::chrono::milliseconds untilKeyboard{4};

}  // namespace

KWinWorkspace::KWinWorkspace(std::shared_ptr<KWinBus> bus, DesktopEntryCatalog entries)
    : ToldWorkspace(std::move(entries), untilKeyboard), bus_(std::move(bus)) {}

std::expected<std::unique_ptr<KWinWorkspace>, QString> KWinWorkspace::create(std::shared_ptr<KWinBus> bus,
                                                                             DesktopEntryCatalog entries) {
    std::unique_ptr<KWinWorkspace> workspace(new KWinWorkspace(bus, std::move(entries)));
    auto script = KWinScript::start(
        std::move(bus), {.active = [self = workspace.get()](const QString& told) { self->activated(told); },
                         .gone = [self = workspace.get()](const QString& identifier) { self->forget(identifier); }});
    if (!script)
        return std::unexpected(script.error());
    workspace->script_ = *std::move(script);
    return workspace;
}

void KWinWorkspace::activated(const QString& told) {
    try {
        setFront(told.isEmpty() ? std::nullopt : std::optional(windowIn(text::parseJson(told.toUtf8()))));
    } catch (const text::JsonError&) {
        setFront(std::nullopt);  // told in another way than is known here: none that could be served
    }
}

bool KWinWorkspace::activateWindow(const QString& identifier) {
    // What a search among the open windows would do with its result.
    return bus_
        ->call({.service = QStringLiteral("org.kde.KWin"),
                .path = QStringLiteral("/WindowsRunner"),
                .interface = QStringLiteral("org.kde.krunner1")},
               QStringLiteral("Run"), {QStringLiteral("0_") + identifier, QString()})
        .has_value();
}

}  // namespace tavrelon::desktop
