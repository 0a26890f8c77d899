#pragma once

#include "desktop/atspi/atspi_accessibility.h"
#include "desktop/linux/input_method/dbus_input_source.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/keys/x11_key_observer.h"
#include "desktop/x11/keys/x11_key_poster.h"
#include "desktop/x11/selection/x11_pasteboard.h"
#include "desktop/x11/windows/x11_terminal_shortcuts.h"
#include "desktop/x11/windows/x11_workspace.h"

namespace tavrelon::testing {

/// This desktop's adapters for all that has to do with typing.
template <typename Log>
struct TypingAdapters {
    desktop::QtMainLoop loop;
    Log log;
    std::unique_ptr<desktop::X11Workspace> workspace = desktop::X11Workspace::create().value();
    std::unique_ptr<desktop::X11Pasteboard> pasteboard = desktop::X11Pasteboard::create(loop, log).value();
    std::shared_ptr<desktop::PostedKeys> posted = std::make_shared<desktop::PostedKeys>();
    std::unique_ptr<desktop::X11KeyPoster> poster =
        desktop::X11KeyPoster::open(loop, posted, desktop::X11TerminalShortcuts::create(loop, log, *pasteboard).value())
            .value();
    desktop::AtspiAccessibility accessibility{*workspace, loop, log};
    desktop::X11Hotkeys hotkeys{loop, log, posted};
    desktop::X11KeyObserver keyObserver{hotkeys};
    desktop::DBusInputSource inputSource{loop, std::chrono::seconds(5)};  // on however busy a machine
};

}  // namespace tavrelon::testing
