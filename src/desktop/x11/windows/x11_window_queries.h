#pragma once

#include <xcb/xcb.h>

#include <QByteArray>
#include <QList>
#include <QString>
#include <chrono>
#include <expected>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/x11/connection/x11_reply_wait.h"
#include "platform/workspace.h"

namespace tavrelon::desktop {

/// What a window says about itself. Texts are empty and the number 0 where it says nothing.
struct X11WindowProperties {
    bool exists = false;
    qint64 processIdentifier = 0;
    QString machine;
    QString windowInstance;  ///< WM_CLASS, first part
    QString windowClass;     ///< WM_CLASS, second part
    QString applicationId;   ///< the toolkit's own id of the application
    std::optional<QString> title;
};

/// The two texts of WM_CLASS; a missing one is empty.
std::pair<QString, QString> decodeWindowClass(const QByteArray& bytes);

/// Questions to the X server about windows, each under a bound, so that a server that somebody holds costs no more
/// than that. A window that is destroyed meanwhile has no properties. The thread that uses it owns it.
class X11WindowQueries {
 public:
    /// For all questions of one call together.
    static constexpr std::chrono::milliseconds limit{250};

    /// The error says what is missing.
    static std::expected<std::unique_ptr<X11WindowQueries>, QString> open(const QByteArray& displayName);
    X11WindowQueries(const X11WindowQueries&) = delete;
    X11WindowQueries& operator=(const X11WindowQueries&) = delete;
    ~X11WindowQueries();

    /// The client window in front: as the window manager says, or the one that holds the input focus where no window
    /// manager says anything. 0 where there is none.
    xcb_window_t activeWindow();

    /// The windows of applications, from the front to the back; none where no window manager tells.
    std::vector<xcb_window_t> clientsFromFront();

    X11WindowProperties properties(xcb_window_t window);
    std::optional<QString> title(xcb_window_t window);

    std::optional<platform::WindowPlace> place(xcb_window_t window);

    /// Whether the primary selection is owned by the client that made this window.
    bool ownsPrimarySelection(xcb_window_t window);

    /// Whether the window was destroyed. A server that does not answer in time leaves it standing.
    bool isGone(xcb_window_t window);

    /// Whether the window is the one in front and also holds the input focus, itself or in a part of it.
    bool hasInputFocus(xcb_window_t window);

    /// Gives the window the input focus without asking the window manager.
    void setInputFocus(xcb_window_t window);

    /// Whether a compositor runs, so that windows may be translucent.
    bool isComposited();

    /// Asks the window manager to bring the window to the front, in the user's name. False when there is no window
    /// manager that takes such requests.
    bool requestActivation(xcb_window_t window);

 private:
    using Deadline = XDeadline;
    struct Atoms {
        xcb_atom_t activeWindow, supported, supportingWindow, processIdentifier, name, applicationId, utf8String,
            windowState, clientsByStacking, ownShadow;
    };
    struct Property {
        xcb_atom_t type = XCB_ATOM_NONE;
        QByteArray bytes;
        std::vector<std::uint32_t> numbers() const;
    };

    explicit X11WindowQueries(xcb_connection_t* connection) : connection_(connection) {}
    bool prepare(int screenNumber);

    template <typename T>
    XPointer<T> await(unsigned int sequence, Deadline deadline);
    unsigned int ask(xcb_window_t window, xcb_atom_t property);
    Property take(unsigned int sequence, Deadline deadline);
    std::optional<unsigned int> askOwner(xcb_window_t window);
    std::optional<qint64> takeOwner(unsigned int sequence, Deadline deadline);
    std::optional<QString> decodeTitle(const Property& modern, const Property& old) const;
    bool windowManagerRuns(const Property& supportingWindow, Deadline deadline);
    xcb_window_t focusedClient(Deadline deadline);
    void discardEvents();

    xcb_connection_t* connection_;
    int screenNumber_ = 0;
    xcb_window_t root_ = XCB_NONE;
    Atoms atoms_{};
};

}  // namespace tavrelon::desktop
