#include "desktop/accessibility_session.h"

#include <QCoreApplication>
#include <QUuid>

#include "support/accessibility_bus_address.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;
using platform::AXAttribute;
using platform::AXElement;

std::optional<platform::RunningApplication> WindowManagerWorkspace::frontmostApplication() {
    return pretend ? platform::RunningApplication{*pretend, {}, {}, 0} : real_->frontmostApplication();
}

std::optional<QString> WindowManagerWorkspace::frontmostWindowTitle() {
    return real_->frontmostWindowTitle();
}

void nextTurn() {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

std::chrono::milliseconds timeOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::ceil<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
}

AccessibilityBus::AccessibilityBus() : name_(QStringLiteral("test-") + QUuid::createUuid().toString()) {
    QDBusConnection::connectToBus(accessibilityBusAddress(), name_);
}

AccessibilityBus::~AccessibilityBus() {
    QDBusConnection::disconnectFromBus(name_);
}

QDBusMessage AccessibilityBus::call(const AXElement& element, const char* interface, const char* method,
                                    const QVariantList& arguments) const {
    auto message =
        QDBusMessage::createMethodCall(element.busName, element.path, QLatin1String(interface), QLatin1String(method));
    message.setArguments(arguments);
    return connection().call(message);
}

platform::Accessibility::Result AccessibilitySession::focused() {
    return accessibility.copyAttribute(platform::axSystemWideElement(), AXAttribute::FocusedUIElement);
}

platform::Accessibility::Result AccessibilitySession::read(const AXElement& element, AXAttribute attribute) {
    nextTurn();
    return accessibility.copyAttribute(element, attribute);
}

std::optional<AXElement> AccessibilitySession::waitForFocusIn(qint64 process) {
    std::optional<AXElement> found;
    eventually([&] {
        const auto front = workspace.frontmostApplication();
        if (!front || front->processIdentifier != process)
            return false;
        if (const auto result = focused()) {
            const auto& element = std::get<AXElement>(*result);
            if (accessibility.copyAttribute(element, AXAttribute::Value))
                found = element;
        }
        return found.has_value();
    });
    if (!found) {  // says in the test's output what stood in the way
        const auto front = workspace.frontmostApplication();
        const auto result = focused();
        qWarning("waited for process %lld, in front is %lld with the title \"%s\", the focused element: %s",
                 static_cast<long long>(process), static_cast<long long>(front ? front->processIdentifier : 0),
                 qPrintable(workspace.frontmostWindowTitle().value_or(QString())),
                 result ? "there" : qPrintable(platform::axErrorName(result.error())));
    }
    return found;
}

QString writeFile(const QTemporaryDir& folder, const QString& name, const QString& text) {
    const auto path = folder.filePath(name);
    writeWhole(path, text.toUtf8());
    return path;
}

}  // namespace tavrelon::testing
