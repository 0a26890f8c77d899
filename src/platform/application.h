#pragma once

#include <functional>

#include "text/localized_text.h"

namespace tavrelon::platform {

/// This process as the desktop sees it. Main thread.
class Application {
 public:
    virtual ~Application() = default;

    /// Shows the program's name, version and licence in a small window that takes the focus.
    virtual void orderFrontStandardAboutPanel(text::Language language) = 0;

    /// `onActiveChanged` is called when one of our windows gets the focus (true) or the last one loses it; null ends
    /// that.
    virtual void setOnActiveChanged(std::function<void(bool isActive)> onActiveChanged) = 0;

    /// Ends the event loop once the running block is done.
    virtual void terminate() = 0;
};

}  // namespace tavrelon::platform
