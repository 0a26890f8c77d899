#pragma once

#include <QObject>
#include <QSizeF>
#include <QString>
#include <functional>
#include <memory>

namespace tavrelon::platform {

/// What a window is made of.
struct WindowDescription {
    QSizeF contentSize;  ///< in points: the desktop's scale is not in it
    QSizeF minimumSize;
    QString view;    ///< the name of the view that fills the window
    QObject* model;  ///< what the view shows; outlives the window
};

/// An ordinary window of the desktop that one view fills: titled, closable, resizable. Main thread.
class Window {
 public:
    virtual ~Window() = default;

    /// Shows the window if it is hidden, brings it to the front and gives it the keyboard.
    virtual void makeKeyAndOrderFront() = 0;
};

class Windows {
 public:
    virtual ~Windows() = default;

    /// Builds a hidden window in the middle of the main screen. Never null: a view that does not load leaves the window
    /// empty and is logged. `onClose` is called once, in a turn of its own, when the user has closed the window; the
    /// window may be destroyed there. The memory of the views goes back to the system with the last window.
    virtual std::unique_ptr<Window> create(const WindowDescription& description, std::function<void()> onClose) = 0;
};

}  // namespace tavrelon::platform
