#include <QCoreApplication>

#include "support/accessibility_bus_address.h"
#include "support/fake_accessible_app.h"

int main(int argc, char** argv) {
    using namespace tavrelon::testing;
    const QCoreApplication application(argc, argv);
    const auto arguments = QCoreApplication::arguments();
    if (arguments.size() != 6)
        return 2;
    FakeAccessibleApp app(static_cast<Manners>(arguments.at(1).toInt()), arguments.at(2), arguments.at(3),
                          arguments.at(4).toInt(), arguments.at(5).toInt());
    if (!app.join(QDBusConnection::connectToBus(accessibilityBusAddress(), QStringLiteral("accessibility"))))
        return 1;
    return QCoreApplication::exec();
}
