#pragma once

#include <QMessageBox>
#include <memory>

#include "platform/application.h"

namespace tavrelon::desktop {

/// The running QApplication. Main thread.
class QtApplication : public platform::Application {
 public:
    void orderFrontStandardAboutPanel(text::Language language) override;
    void setOnActiveChanged(std::function<void(bool isActive)> onActiveChanged) override;
    void terminate() override;

 private:
    std::unique_ptr<QMessageBox> about_;
    std::unique_ptr<QObject> activation_;  ///< the subscription
};

}  // namespace tavrelon::desktop
