#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <chrono>
#include <functional>

#include "desktop/atspi/atspi_accessibility.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/tools.h"
#include "support/fake_workspace.h"
#include "support/recording_log.h"
#include "support/waiting.h"

namespace tavrelon::testing {

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

/// The adapter at work, and whose window is in front.
struct AccessibilitySession {
    FakeWorkspace workspace;
    desktop::QtMainLoop loop;
    RecordingLog log;
    desktop::AtspiAccessibility accessibility{workspace, loop, log};

    void putInFront(qint64 process) { workspace.focus({process, {}, {}, 0}); }
    platform::Accessibility::Result focused();
    platform::Accessibility::Result read(const platform::AXElement& element, platform::AXAttribute attribute);
};

}  // namespace tavrelon::testing
