#pragma once

#include <expected>
#include <functional>
#include <memory>

#include "async/main_loop.h"
#include "desktop/qt/qt_panels.h"
#include "desktop/qt/qt_raw_keys.h"
#include "platform/hotkeys.h"
#include "platform/key_observer.h"
#include "platform/key_poster.h"
#include "platform/log.h"
#include "platform/pasteboard.h"
#include "platform/permissions.h"
#include "platform/screen_capture.h"
#include "platform/workspace.h"

namespace tavrelon::desktop {

/// The ports that a windowing system serves, and what the views need of it. A later one uses those before it.
struct WindowingSystem {
    std::shared_ptr<void> connection;  ///< what the others share; null where each has its own
    std::unique_ptr<platform::Workspace> workspace;
    std::unique_ptr<platform::Pasteboard> pasteboard;
    std::unique_ptr<platform::KeyPoster> keyPoster;
    std::unique_ptr<platform::ScreenCapture> screenCapture;
    std::unique_ptr<platform::Hotkeys> hotkeys;
    std::unique_ptr<platform::KeyObserver> keyObserver;
    PanelSurroundings panelSurroundings;
    NativeKeyNames keyNames;
    std::function<void()> letGoOfLeftOverModifiers;  ///< of a run that was killed; by the user's one process only
    std::function<void()> letGoOfModifiers;  ///< before the process stops: nobody would let go of what was given back
    /// By which this session can serve all windows; without functions where it needs nothing.
    platform::Permission shellExtension{};
    QString shortfall{};  ///< why only X11 windows are served where it could be all; empty otherwise. For the user.
};

/// Opens that of this session. The error says what is missing, for the user to read.
std::expected<WindowingSystem, QString> openWindowingSystem(async::MainLoop& loop, platform::Log& log);

/// Whether there is one, asked before anything is built. To be kept until it is open, since a server may end with its
/// last client. The error is for the user to read.
std::expected<std::shared_ptr<void>, QString> tryDisplay();

}  // namespace tavrelon::desktop
