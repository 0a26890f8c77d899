#include "desktop/atspi/atspi_protocol.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <algorithm>
#include <array>

#include "desktop/atspi/chain.h"

namespace tavrelon::desktop::atspi {

using platform::AXError;

bool ObjectReference::isNull() const {
    return busName.isEmpty() || path.isEmpty() || path == QLatin1String("/org/a11y/atspi/null");
}

bool StateSet::has(State state) const {
    const auto bit = static_cast<unsigned>(state);
    const std::size_t word = bit / 32;
    return word < words_.size() && (words_[word] >> (bit % 32) & 1U) != 0;
}

bool isMenu(quint32 role) {
    constexpr std::array menus{Role::Menu, Role::MenuBar, Role::PopupMenu};
    return std::ranges::find(menus, static_cast<Role>(role)) != menus.end();
}

AXError errorOf(const QString& dbusErrorName) {
    struct Entry {
        QLatin1String name;
        AXError error;
    };
    static constexpr std::array table{
        Entry{QLatin1String("org.freedesktop.DBus.Error.NoReply"), AXError::CannotComplete},
        Entry{QLatin1String("org.freedesktop.DBus.Error.Timeout"), AXError::CannotComplete},
        Entry{QLatin1String("org.freedesktop.DBus.Error.TimedOut"), AXError::CannotComplete},
        Entry{QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner"), AXError::InvalidUIElement},
        Entry{QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown"), AXError::InvalidUIElement},
        Entry{QLatin1String("org.freedesktop.DBus.Error.UnknownObject"), AXError::InvalidUIElement},
        Entry{QLatin1String("org.freedesktop.DBus.Error.UnknownInterface"), AXError::AttributeUnsupported},
        Entry{QLatin1String("org.freedesktop.DBus.Error.UnknownMethod"), AXError::AttributeUnsupported},
        Entry{QLatin1String("org.freedesktop.DBus.Error.UnknownProperty"), AXError::AttributeUnsupported},
        Entry{QLatin1String("org.freedesktop.DBus.Error.Disconnected"), AXError::APIDisabled},
    };
    const auto* found = std::ranges::find_if(table, [&](const Entry& entry) { return entry.name == dbusErrorName; });
    return found == table.end() ? AXError::Failure : found->error;
}

QDBusMessage methodCall(const ObjectReference& object, const char* interface, const char* method,
                        const QVariantList& arguments) {
    auto call =
        QDBusMessage::createMethodCall(object.busName, object.path, QLatin1String(interface), QLatin1String(method));
    call.setArguments(arguments);
    call.setAutoStartService(false);
    return call;
}

QDBusMessage propertyCall(const ObjectReference& object, const char* interface, const char* property) {
    return methodCall(object, "org.freedesktop.DBus.Properties", "Get",
                      {QString::fromLatin1(interface), QString::fromLatin1(property)});
}

namespace {

/// The reply's first argument, if the reply has that signature.
std::expected<QVariant, AXError> soleArgument(const QDBusMessage& reply, const char* signature) {
    if (reply.signature() != QLatin1String(signature) || reply.arguments().isEmpty())
        return std::unexpected(AXError::Failure);
    return reply.arguments().constFirst();
}

ObjectReference readObject(const QDBusArgument& argument) {
    ObjectReference object;
    QDBusObjectPath path;
    argument.beginStructure();
    argument >> object.busName >> path;
    argument.endStructure();
    object.path = path.path();
    return object;
}

std::vector<ObjectReference> readObjects(const QDBusArgument& argument) {
    std::vector<ObjectReference> objects;
    argument.beginArray();
    while (!argument.atEnd())
        objects.push_back(readObject(argument));
    argument.endArray();
    return objects;
}

}  // namespace

std::expected<StateSet, AXError> statesOf(const QDBusMessage& reply) {
    return mapped(soleArgument(reply, "au"), [](const QVariant& value) {
        const auto words = qdbus_cast<QList<quint32>>(value);
        return StateSet({words.begin(), words.end()});
    });
}

std::expected<std::vector<ObjectReference>, AXError> objectsOf(const QDBusMessage& reply) {
    return mapped(soleArgument(reply, "a(so)"),
                  [](const QVariant& value) { return readObjects(value.value<QDBusArgument>()); });
}

std::expected<ObjectReference, AXError> objectOf(const QDBusMessage& reply) {
    return mapped(soleArgument(reply, "(so)"),
                  [](const QVariant& value) { return readObject(value.value<QDBusArgument>()); });
}

std::expected<quint32, AXError> numberOf(const QDBusMessage& reply) {
    return mapped(soleArgument(reply, "u"), [](const QVariant& value) { return value.toUInt(); });
}

std::expected<qint32, AXError> signedNumberOf(const QDBusMessage& reply) {
    return mapped(soleArgument(reply, "i"), [](const QVariant& value) { return value.toInt(); });
}

std::expected<QStringList, AXError> namesOf(const QDBusMessage& reply) {
    return mapped(soleArgument(reply, "as"), [](const QVariant& value) { return value.toStringList(); });
}

std::expected<QString, AXError> textOf(const QDBusMessage& reply) {
    return mapped(soleArgument(reply, "s"), [](const QVariant& value) { return value.toString(); });
}

std::expected<bool, AXError> answerOf(const QDBusMessage& reply) {
    return mapped(soleArgument(reply, "b"), [](const QVariant& value) { return value.toBool(); });
}

std::expected<std::pair<qint32, qint32>, AXError> rangeOf(const QDBusMessage& reply) {
    if (reply.signature() != QLatin1String("ii") || reply.arguments().size() != 2)
        return std::unexpected(AXError::Failure);
    return std::pair(reply.arguments().at(0).toInt(), reply.arguments().at(1).toInt());
}

std::expected<platform::AXRect, AXError> rectangleOf(const QDBusMessage& reply) {
    const auto arguments = reply.arguments();
    std::array<int, 4> numbers{};
    if (reply.signature() == QLatin1String("iiii") && arguments.size() == 4) {
        for (qsizetype i = 0; i < 4; ++i)
            numbers[static_cast<std::size_t>(i)] = arguments.at(i).toInt();
    } else if (reply.signature() == QLatin1String("(iiii)") && arguments.size() == 1) {
        const auto structure = arguments.constFirst().value<QDBusArgument>();
        structure.beginStructure();
        for (auto& number : numbers)
            structure >> number;
        structure.endStructure();
    } else {
        return std::unexpected(AXError::Failure);
    }
    return platform::AXRect{{static_cast<double>(numbers[0]), static_cast<double>(numbers[1])},
                            {static_cast<double>(numbers[2]), static_cast<double>(numbers[3])}};
}

std::expected<QVariant, AXError> propertyOf(const QDBusMessage& reply) {
    return mapped(soleArgument(reply, "v"),
                  [](const QVariant& value) { return value.value<QDBusVariant>().variant(); });
}

std::expected<ObjectReference, AXError> objectInPropertyOf(const QDBusMessage& reply) {
    const auto value = propertyOf(reply);
    if (!value || value->userType() != qMetaTypeId<QDBusArgument>())
        return std::unexpected(AXError::Failure);
    const auto argument = value->value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("(so)"))
        return std::unexpected(AXError::Failure);
    return readObject(argument);
}

}  // namespace tavrelon::desktop::atspi
