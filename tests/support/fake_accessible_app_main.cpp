#include <QCoreApplication>
#include <QDBusReply>

#include "support/fake_accessible_app.h"

int main(int argc, char** argv) {
    using namespace tavrelon::testing;
    const QCoreApplication application(argc, argv);
    const auto arguments = QCoreApplication::arguments();
    if (arguments.size() != 6)
        return 2;
    FakeAccessibleApp app(static_cast<Manners>(arguments.at(1).toInt()), arguments.at(2), arguments.at(3),
                          arguments.at(4).toInt(), arguments.at(5).toInt());
    const QDBusReply<QString> address = QDBusConnection::sessionBus().call(
        QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                       QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress")));
    if (!app.join(QDBusConnection::connectToBus(address.value(), QStringLiteral("accessibility"))))
        return 1;
    return QCoreApplication::exec();
}
