#include "desktop/accessibility_session.h"

#include <QCoreApplication>
#include <QUuid>

#include "support/accessibility_bus_address.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;
using platform::AXAttribute;
using platform::AXElement;

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

}  // namespace tavrelon::testing
