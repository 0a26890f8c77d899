#pragma once

#include <QMenu>
#include <QSystemTrayIcon>

#include "platform/status_item.h"

namespace tavrelon::desktop {

/// The icon in the tray. Needs a QApplication. Main thread.
class QtStatusItem : public platform::StatusItem {
 public:
    QtStatusItem();

    void setImage(const QString& symbolName, const QString& accessibilityDescription) override;
    void setMenu(std::vector<platform::MenuItem> items) override;

 private:
    QMenu menu_;
    QSystemTrayIcon icon_;
};

}  // namespace tavrelon::desktop
