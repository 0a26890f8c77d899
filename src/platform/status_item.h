#pragma once

#include <QString>
#include <functional>
#include <vector>

namespace tavrelon::platform {

struct MenuItem {
    QString title;          ///< empty for a separator
    QString keyEquivalent;  ///< pressed together with Command while the menu is open; empty for none
    std::function<void()> action;
};

/// The program's icon in the desktop's tray, with the menu that a click opens. Where there is no tray nothing shows,
/// and the icon appears as soon as a tray does. Main thread.
class StatusItem {
 public:
    virtual ~StatusItem() = default;

    /// A symbol that is not known leaves the image as it was.
    virtual void setImage(const QString& symbolName, const QString& accessibilityDescription) = 0;
    virtual void setMenu(std::vector<MenuItem> items) = 0;
};

}  // namespace tavrelon::platform
