#include "desktop/dashboard_session.h"

#include <stdexcept>

#include "desktop/tools.h"
#include "support/accessibility_bus_address.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;
namespace atspi = desktop::atspi;

DashboardWindow::DashboardWindow() : bus_(QStringLiteral("dashboard-test")) {
    QDBusConnection::connectToBus(accessibilityBusAddress(), bus_);
    if (!eventually([this] { return program().has_value(); }))
        throw std::runtime_error("the dashboard is not on the accessibility bus");
}

DashboardWindow::~DashboardWindow() {
    QDBusConnection::disconnectFromBus(bus_);
}

QDBusMessage DashboardWindow::call(const QDBusMessage& message) const {
    constexpr int limit = 2000;  // milliseconds
    return QDBusConnection(bus_).call(message, QDBus::Block, limit);
}

QString DashboardWindow::nameOf(const Object& object) const {
    return atspi::propertyOf(call(atspi::propertyCall(object, atspi::accessibleInterface, "Name")))
        .value_or(QVariant())
        .toString();
}

std::optional<DashboardWindow::Object> DashboardWindow::program() const {
    const Object registry{QString::fromLatin1(atspi::registryName), QString::fromLatin1(atspi::rootPath)};
    const auto programs =
        atspi::objectsOf(call(atspi::methodCall(registry, atspi::accessibleInterface, "GetChildren")));
    for (const auto& each : programs.value_or(std::vector<Object>()))
        if (nameOf(each) == QStringLiteral("Tavrelon"))
            return each;
    return std::nullopt;
}

void DashboardWindow::collect(const Object& object, std::vector<Element>& elements) const {
    const auto states = atspi::statesOf(call(atspi::methodCall(object, atspi::accessibleInterface, "GetState")));
    if (!states)
        return;
    if (states->has(atspi::State::Showing)) {
        const auto role = atspi::textOf(call(atspi::methodCall(object, atspi::accessibleInterface, "GetRoleName")));
        elements.push_back({nameOf(object), role.value_or(QString()), states->has(atspi::State::Focused), object});
    }
    const auto children = atspi::objectsOf(call(atspi::methodCall(object, atspi::accessibleInterface, "GetChildren")));
    for (const auto& child : children.value_or(std::vector<Object>()))
        collect(child, elements);
}

std::vector<DashboardWindow::Element> DashboardWindow::elementsInSight() const {
    std::vector<Element> elements;
    if (const auto root = program())
        collect(*root, elements);
    return elements;
}

std::optional<DashboardWindow::Element> DashboardWindow::find(const QString& name, const QString& role) const {
    for (const auto& element : elementsInSight())
        if (element.name == name && (role.isEmpty() || element.role == role))
            return element;
    return std::nullopt;
}

bool DashboardWindow::waitFor(const QString& name) {
    return eventually([&] { return find(name, {}).has_value(); });
}

QRect DashboardWindow::frameOf(const Object& object) const {
    const QVariantList onScreen{0U};
    const auto frame =
        atspi::rectangleOf(call(atspi::methodCall(object, atspi::componentInterface, "GetExtents", onScreen)));
    if (!frame)
        throw std::runtime_error("a control has no place");
    return QRectF(frame->origin.x, frame->origin.y, frame->size.width, frame->size.height).toRect();
}

void DashboardWindow::press(const QString& name, const QString& role) {
    std::optional<Element> element;
    if (!eventually([&] { return (element = find(name, role)).has_value(); }))
        throw std::runtime_error("nothing to press is called " + name.toStdString());
    const auto centre = frameOf(element->object).center();
    xdotool({QStringLiteral("mousemove"), QString::number(centre.x()), QString::number(centre.y()),
             QStringLiteral("click"), QStringLiteral("1")});
    letKeysArrive();
}

QString DashboardWindow::focused(const QString& previous) {
    auto name = previous;
    eventually(
        [&] {
            for (const auto& element : elementsInSight())
                if (element.isFocused && element.name != previous && element.role != QStringLiteral("frame")) {
                    name = element.name;
                    return true;
                }
            return false;
        },
        2s);
    return name;
}

}  // namespace tavrelon::testing
