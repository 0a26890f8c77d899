#pragma once

#include "desktop/x11/windows/x11_window_queries.h"

namespace tavrelon::desktop {

/// What panels need of the X server beyond their toolkit. Main thread; every call is bounded by
/// `X11WindowQueries::limit`.
class X11PanelSurroundings {
 public:
    /// The error says what is missing.
    static std::expected<std::unique_ptr<X11PanelSurroundings>, QString> create(const QByteArray& displayName = {}) {
        auto windows = X11WindowQueries::open(displayName);
        if (!windows)
            return std::unexpected(windows.error());
        return std::unique_ptr<X11PanelSurroundings>(new X11PanelSurroundings(std::move(*windows)));
    }

    bool isComposited() { return windows_->isComposited(); }

    /// Gives the window the keyboard, whatever the window manager thinks of it. It must be on the screen.
    void focus(quint64 windowIdentifier) { windows_->setInputFocus(static_cast<xcb_window_t>(windowIdentifier)); }

 private:
    explicit X11PanelSurroundings(std::unique_ptr<X11WindowQueries> windows) : windows_(std::move(windows)) {}
    std::unique_ptr<X11WindowQueries> windows_;
};

}  // namespace tavrelon::desktop
