#include "desktop/linux/input_method/input_method_inquiry.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QFile>
#include <QStandardPaths>
#include <QSysInfo>

#include "desktop/linux/input_method/input_method_decoding.h"
#include "desktop/linux/process/bus_state.h"

namespace tavrelon::desktop {

namespace {

std::optional<QVariant> ask(const QString& connection, const QDBusMessage& question) {
    const auto answer = QDBusConnection(connection).call(question, QDBus::Block, InputMethodInquiry::answerLimitMs);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty())
        return std::nullopt;
    return answer.arguments().front();
}

/// The name in IBus's description of an engine: the third field of a structure, behind its type and its attachments.
std::optional<QString> engineName(const QVariant& answer) {
    auto value = answer;
    while (value.canConvert<QDBusVariant>())  // the property is itself of a type that can hold anything
        value = value.value<QDBusVariant>().variant();
    if (!value.canConvert<QDBusArgument>())
        return std::nullopt;
    const auto description = value.value<QDBusArgument>();
    if (!description.currentSignature().startsWith(QStringLiteral("(sa{sv}s")))
        return std::nullopt;
    QString type;
    QVariantMap attachments;
    QString name;
    description.beginStructure();
    description >> type >> attachments >> name;
    description.endStructure();  // or the reader of the structure would never be freed
    return name;
}

}  // namespace

QString ibusAddressNow() {
    if (const auto given = qEnvironmentVariable("IBUS_ADDRESS"); !given.isEmpty())
        return given;
    const auto folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    const auto name =
        ibusAddressFileName(QString::fromLatin1(QSysInfo::machineUniqueId()), qEnvironmentVariable("DISPLAY"));
    QFile file(folder + QStringLiteral("/ibus/bus/") + name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return ibusAddressIn(file.read(4096)).value_or(QString());
}

InputMethodInquiry::InputMethodInquiry() {
    name_ = QStringLiteral("tavrelon-input-method-%1").arg(reinterpret_cast<quintptr>(this));
    // Without a bus the library would start one of its own.
    if (!sessionBusAddress().isEmpty())
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, name_);
    connectToIBus();
}

InputMethodInquiry::~InputMethodInquiry() {
    QDBusConnection::disconnectFromBus(name_);
    QDBusConnection::disconnectFromBus(name_ + QStringLiteral("-ibus"));
}

bool InputMethodInquiry::isComposing() {
    if (const auto method = askFcitx("CurrentInputMethod")) {
        const auto name = method->toString();
        const auto state = name.isEmpty() ? askFcitx("State") : std::nullopt;
        return isComposingFcitxMethod(name, state ? state->toInt() : 0);
    }
    const auto engine = ibusEngine();
    return engine && isComposingIBusEngine(*engine);
}

std::optional<QVariant> InputMethodInquiry::askFcitx(const char* method) {
    auto question =
        QDBusMessage::createMethodCall(QStringLiteral("org.fcitx.Fcitx5"), QStringLiteral("/controller"),
                                       QStringLiteral("org.fcitx.Fcitx.Controller1"), QString::fromLatin1(method));
    question.setAutoStartService(false);
    return ask(name_, question);
}

std::optional<QString> InputMethodInquiry::ibusEngine() {
    if (!connectToIBus())
        return std::nullopt;
    auto question =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.IBus"), QStringLiteral("/org/freedesktop/IBus"),
                                       QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question << QStringLiteral("org.freedesktop.IBus") << QStringLiteral("GlobalEngine");
    const auto answer = ask(name_ + QStringLiteral("-ibus"), question);
    return answer ? engineName(*answer) : std::nullopt;
}

bool InputMethodInquiry::connectToIBus() {
    const auto name = name_ + QStringLiteral("-ibus");
    const auto address = ibusAddressNow();
    if (address == ibusAddress_ && QDBusConnection(name).isConnected())
        return true;
    QDBusConnection::disconnectFromBus(name);
    ibusAddress_ = address;
    return !address.isEmpty() && busState(address, std::chrono::milliseconds(answerLimitMs)) == BusState::Speaks &&
           QDBusConnection::connectToBus(address, name).isConnected();
}

}  // namespace tavrelon::desktop
