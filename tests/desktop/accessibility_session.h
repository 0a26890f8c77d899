#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QTemporaryDir>
#include <chrono>
#include <functional>
#include <memory>

#include "desktop/atspi/atspi_accessibility.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/tools.h"
#include "desktop/x11/x11_workspace.h"
#include "support/recording_log.h"
#include "support/waiting.h"

namespace tavrelon::testing {

/// What the window manager says is in front; or, once `pretend` is set, an application that has no window.
class WindowManagerWorkspace : public platform::Workspace {
 public:
    std::optional<qint64> pretend;  ///< the process to name as frontmost

    std::optional<platform::RunningApplication> frontmostApplication() override;
    std::optional<platform::FrontmostWindow> frontmostWindow() override { return std::nullopt; }
    std::optional<QString> frontmostWindowTitle() override;
    std::optional<platform::WindowPlace> frontmostWindowPlace() override { return std::nullopt; }
    bool isOwnApplicationActive() override { return false; }
    bool isTerminated(const platform::RunningApplication&) override { return false; }
    bool activate(const platform::RunningApplication&) override { return false; }
    bool hasKeyboard(const platform::RunningApplication&) override { return false; }
    bool openUrl(const QUrl&) override { return false; }

 private:
    std::unique_ptr<desktop::X11Workspace> real_ = desktop::X11Workspace::create().value();
};

/// Ends the turn of the main loop.
void nextTurn();

/// How long `work` took.
std::chrono::milliseconds timeOf(const std::function<void()>& work);

/// A connection of the test's own to the accessibility bus, to arrange what the adapter is to find.
class AccessibilityBus {
 public:
    AccessibilityBus();
    ~AccessibilityBus();
    QDBusMessage call(const platform::AXElement& element, const char* interface, const char* method,
                      const QVariantList& arguments = {}) const;
    QDBusConnection connection() const { return QDBusConnection(name_); }

 private:
    QString name_;
};

/// The adapter at work on this desktop.
struct AccessibilitySession {
    WindowManagerWorkspace workspace;
    desktop::QtMainLoop loop;
    RecordingLog log;
    desktop::AtspiAccessibility accessibility{workspace, loop, log};

    platform::Accessibility::Result focused();
    platform::Accessibility::Result read(const platform::AXElement& element, platform::AXAttribute attribute);

    /// Waits until something of the process has the focus, and gives it.
    std::optional<platform::AXElement> waitForFocusIn(qint64 process);
};

QString writeFile(const QTemporaryDir& folder, const QString& name, const QString& text);

}  // namespace tavrelon::testing
