#include "desktop/session/windowing_system.h"

#include <QCoreApplication>

#include "desktop/gnome/extension/shell_extension.h"
#include "desktop/gnome/keys/gnome_hotkeys.h"
#include "desktop/gnome/keys/gnome_key_poster.h"
#include "desktop/gnome/screen/gnome_screen_capture.h"
#include "desktop/gnome/windows/gnome_workspace.h"
#include "desktop/kwin/connection_in_sight.h"
#include "desktop/kwin/keys/kwin_hotkeys.h"
#include "desktop/kwin/keys/kwin_key_poster.h"
#include "desktop/kwin/screen/kwin_screen_capture.h"
#include "desktop/kwin/windows/kwin_workspace.h"
#include "desktop/session/session_kind.h"
#include "desktop/wayland/clipboard/wayland_pasteboard.h"
#include "desktop/wayland/keys/native_shortcuts.h"
#include "desktop/wayland/keys/wayland_key_poster.h"
#include "desktop/wayland/sway/sway_hotkeys.h"
#include "desktop/wayland/sway/sway_screen_capture.h"
#include "desktop/wayland/sway/sway_workspace.h"
#include "desktop/x11/keys/x11_key_observer.h"
#include "desktop/x11/keys/x11_key_poster.h"
#include "desktop/x11/keys/x11_native_keys.h"
#include "desktop/x11/screen/x11_screen_capture.h"
#include "desktop/x11/selection/x11_pasteboard.h"
#include "desktop/x11/windows/x11_panel_surroundings.h"
#include "desktop/x11/windows/x11_terminal_shortcuts.h"

namespace tavrelon::desktop {

namespace {

struct Missing {
    QString reason;
};

/// Where a session tells nobody what is typed: the field alone does.
class NoKeyObserver : public platform::KeyObserver {
 public:
    bool start(Calls) override { return false; }
    void stop() override {}
};

template <typename T>
T opened(std::expected<T, QString> part) {
    if (!part)
        throw Missing{part.error()};
    return *std::move(part);
}

NativeKeyNames keyNames(const std::shared_ptr<X11NativeKeys>& keys) {
    return {[keys] { keys->refresh(); },
            [keys](const NativeKey& key) {
                return keys->eventOf(static_cast<KeyCode>(key.code), key.modifiers,
                                     key.isPress ? KeyAction::Press : KeyAction::Release, key.isRepeat);
            }};
}

PanelSurroundings panelSurroundings(const std::shared_ptr<X11PanelSurroundings>& windows) {
    return {[windows] { return windows->isComposited(); }, [windows](quint64 window) { windows->focus(window); }};
}

/// As each compositor's own kind of workspace tells it; the workspace must outlive it.
template <typename Workspace>
std::unique_ptr<ShortcutTranslator> shortcutsOf(Workspace& workspace) {
    return std::make_unique<NativeShortcuts>([&workspace]() -> std::optional<NativeShortcuts::Names> {
        const auto& window = workspace.focusedWindow();
        return window ? std::optional(NativeShortcuts::Names{window->name(), window->windowInstance}) : std::nullopt;
    });
}

WindowingSystem openX11(async::MainLoop& loop, platform::Log& log) {
    const auto posted = std::make_shared<PostedKeys>();
    auto workspace = opened(X11Workspace::create());
    auto pasteboard = opened(X11Pasteboard::create(loop, log));
    auto keyPoster =
        opened(X11KeyPoster::open(loop, posted, opened(X11TerminalShortcuts::create(loop, log, *pasteboard))));
    auto screenCapture = opened(X11ScreenCapture::create(loop, log, *workspace));
    auto hotkeys = std::make_unique<X11Hotkeys>(loop, log, posted);
    auto keyObserver = std::make_unique<X11KeyObserver>(*hotkeys);
    auto letGoOfLeftOver = [poster = keyPoster.get()] { poster->letGoOfLeftOverModifiers(); };
    auto letGo = [poster = keyPoster.get()] { poster->letGoOfModifiers(); };
    return WindowingSystem{nullptr,
                           std::move(workspace),
                           std::move(pasteboard),
                           std::move(keyPoster),
                           std::move(screenCapture),
                           std::move(hotkeys),
                           std::move(keyObserver),
                           panelSurroundings(opened(X11PanelSurroundings::create())),
                           keyNames(opened(X11NativeKeys::create())),
                           std::move(letGoOfLeftOver),
                           std::move(letGo)};
}

/// What is native there by Wayland and by sway's own socket; our windows are drawn by its X server.
WindowingSystem openSway(async::MainLoop& loop, platform::Log& log) {
    std::shared_ptr<WaylandConnection> connection = opened(WaylandConnection::open());
    auto workspace = opened(SwayWorkspace::create());
    auto keyPoster = opened(WaylandKeyPoster::open(*connection, shortcutsOf(*workspace)));
    auto pasteboard = opened(WaylandPasteboard::create(loop, log, *connection, keyPoster->presses()));
    // An X server's pixels are sway's logical ones.
    auto screenCapture = std::make_unique<SwayScreenCapture>(loop, *workspace, connection->globals().givesPictures,
                                                             [] { return shownOverlayFrames(); });
    return WindowingSystem{std::move(connection),
                           std::move(workspace),
                           std::move(pasteboard),
                           std::move(keyPoster),
                           std::move(screenCapture),
                           std::make_unique<SwayHotkeys>(loop, log),
                           std::make_unique<NoKeyObserver>(),
                           panelSurroundings(opened(X11PanelSurroundings::create())),
                           keyNames(opened(X11NativeKeys::create())),
                           [] {},
                           [] {}};
}

/// What is native there by Wayland, and by what KWin offers on the session bus.
WindowingSystem openPlasma(async::MainLoop& loop, platform::Log& log) {
    std::shared_ptr<WaylandConnection> connection = opened(connectInSight());
    auto bus = opened(KWinBus::open());
    const auto posts = std::make_shared<OwnPosts>();
    auto workspace = opened(KWinWorkspace::create(bus));
    auto keyPoster = opened(KWinKeyPoster::open(*connection, bus, posts, shortcutsOf(*workspace)));
    auto pasteboard = opened(WaylandPasteboard::create(loop, log, *connection, keyPoster->presses()));
    auto screenCapture = std::make_unique<KWinScreenCapture>(
        loop, log, *workspace, QCoreApplication::applicationDirPath() + QStringLiteral("/tavrelon-window-picture"));
    return WindowingSystem{std::move(connection),
                           std::move(workspace),
                           std::move(pasteboard),
                           std::move(keyPoster),
                           std::move(screenCapture),
                           std::make_unique<KWinHotkeys>(loop, log, std::move(bus), posts),
                           std::make_unique<NoKeyObserver>(),
                           panelSurroundings(opened(X11PanelSurroundings::create())),
                           keyNames(opened(X11NativeKeys::create())),
                           [] {},
                           [] {}};
}

/// What is native there by our extension of the shell, which shares its clipboard with X11 both ways.
WindowingSystem openGnome(async::MainLoop& loop, platform::Log& log) {
    const auto shell = opened(ShellConnection::open());
    auto workspace = std::make_unique<GnomeWorkspace>(shell);
    auto keyPoster = opened(GnomeKeyPoster::open(shell, shortcutsOf(*workspace)));
    auto pasteboard = opened(X11Pasteboard::create(loop, log));
    pasteboard->countPresses(keyPoster->presses());
    auto screenCapture = std::make_unique<GnomeScreenCapture>(loop, *workspace, shell);
    return WindowingSystem{shell,
                           std::move(workspace),
                           std::move(pasteboard),
                           std::move(keyPoster),
                           std::move(screenCapture),
                           std::make_unique<GnomeHotkeys>(loop, log, shell),
                           std::make_unique<NoKeyObserver>(),
                           panelSurroundings(opened(X11PanelSurroundings::create())),
                           keyNames(opened(X11NativeKeys::create())),
                           [] {},
                           [] {}};
}

/// Without what the compositor grants or runs for us the X11 windows are still served.
WindowingSystem openNativeOrX11(WindowingSystem (*openNative)(async::MainLoop&, platform::Log&), async::MainLoop& loop,
                                platform::Log& log) try {
    return openNative(loop, log);
} catch (const Missing& missing) {
    log.line(QStringLiteral("[Session] Only X11 windows are served: ") + missing.reason);
    auto system = openX11(loop, log);
    system.shortfall = missing.reason;
    return system;
}

WindowingSystem openGnomeOrX11(async::MainLoop& loop, platform::Log& log) {
    auto system = openNativeOrX11(openGnome, loop, log);
    system.shellExtension = shellExtension(log, system.shortfall.isEmpty());
    return system;
}

}  // namespace

std::expected<WindowingSystem, QString> openWindowingSystem(async::MainLoop& loop, platform::Log& log) try {
    switch (sessionKind()) {
        case SessionKind::Sway:
            return openSway(loop, log);
        case SessionKind::Plasma:
            return openNativeOrX11(openPlasma, loop, log);
        case SessionKind::Gnome:
            return openGnomeOrX11(loop, log);
        default:
            return openX11(loop, log);
    }
} catch (const Missing& missing) {
    return std::unexpected(missing.reason);
}

std::expected<std::shared_ptr<void>, QString> tryDisplay() {
    return X11Connection::open();
}

}  // namespace tavrelon::desktop
