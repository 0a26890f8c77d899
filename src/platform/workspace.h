#pragma once

#include <QString>
#include <QUrl>
#include <cstdint>
#include <optional>

namespace tavrelon::platform {

/// An application with a window, as it was when it was asked for.
struct RunningApplication {
    qint64 processIdentifier = 0;             ///< 0 where it is unknown, as on another machine
    std::optional<QString> bundleIdentifier;  ///< desktop entry, window class, or the known name of the same product
    std::optional<QString> localizedName;
    quint64 windowIdentifier = 0;  ///< the window that was in front; 0 where there is none
    bool operator==(const RunningApplication&) const = default;
};

enum class WindowKind : std::uint8_t {
    Ordinary,
    Terminal,
    WithoutPaste,  ///< nobody knows which key pastes there
};

/// The window that has the focus.
struct FrontmostWindow {
    quint64 identifier = 0;        ///< as of `RunningApplication`
    qint64 processIdentifier = 0;  ///< 0 where it is unknown
    WindowKind kind = WindowKind::Ordinary;
    bool operator==(const FrontmostWindow&) const = default;
};

/// A window's own area on the screen, in pixels from the upper left corner, without what the window manager puts around
/// it.
struct WindowPlace {
    /// Widths of what the window draws around itself beyond its visible edge.
    struct Shadow {
        int left = 0, right = 0, top = 0, bottom = 0;
        bool operator==(const Shadow&) const = default;
    };
    int x = 0, y = 0, width = 0, height = 0;  ///< with the shadow
    Shadow shadow;
    bool countsFromItself = false;  ///< the application does not know where it lies, and tells places within the window
    double scale = 1;  ///< pixels of its display for each of the units above, as far as the application may know them
    bool operator==(const WindowPlace&) const = default;
};

/// The applications of the session. Main thread; answers within a few milliseconds whatever the applications do.
class Workspace {
 public:
    virtual ~Workspace() = default;

    /// The application whose window has the focus. Absent when no window has it or its process is unknown.
    virtual std::optional<RunningApplication> frontmostApplication() = 0;

    /// The window that has the focus, also where its process is unknown.
    virtual std::optional<FrontmostWindow> frontmostWindow() = 0;

    /// The title of the window that has the focus.
    virtual std::optional<QString> frontmostWindowTitle() = 0;

    /// Where the window lies that has the focus.
    virtual std::optional<WindowPlace> frontmostWindowPlace() = 0;

    virtual bool isTerminated(const RunningApplication& application) = 0;

    /// Asks the window manager to bring the application to the front. False when it cannot be asked.
    virtual bool activate(const RunningApplication& application) = 0;

    /// Whether the application's window is in front and keys really go to it: the first is said before the second is
    /// so.
    virtual bool hasKeyboard(const RunningApplication& application) = 0;

    virtual bool openUrl(const QUrl& url) = 0;
};

}  // namespace tavrelon::platform
