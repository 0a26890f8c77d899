#include "desktop/session/windowing_system.h"

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

}  // namespace

std::expected<WindowingSystem, QString> openWindowingSystem(async::MainLoop& loop, platform::Log& log) try {
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
    return WindowingSystem{std::move(workspace),
                           std::move(pasteboard),
                           std::move(keyPoster),
                           std::move(screenCapture),
                           std::move(hotkeys),
                           std::move(keyObserver),
                           panelSurroundings(opened(X11PanelSurroundings::create())),
                           keyNames(opened(X11NativeKeys::create())),
                           std::move(letGoOfLeftOver),
                           std::move(letGo)};
} catch (const Missing& missing) {
    return std::unexpected(missing.reason);
}

std::expected<std::shared_ptr<void>, QString> tryDisplay() {
    return X11Connection::open();
}

}  // namespace tavrelon::desktop
