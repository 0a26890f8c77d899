#pragma once

#include <QDBusMessage>
#include <QString>
#include <QStringList>
#include <expected>
#include <vector>

#include "platform/accessibility.h"

namespace tavrelon::desktop::atspi {

inline constexpr auto rootPath = "/org/a11y/atspi/accessible/root";
inline constexpr auto registryName = "org.a11y.atspi.Registry";
inline constexpr auto accessibleInterface = "org.a11y.atspi.Accessible";
inline constexpr auto applicationInterface = "org.a11y.atspi.Application";
inline constexpr auto textInterface = "org.a11y.atspi.Text";
inline constexpr auto hypertextInterface = "org.a11y.atspi.Hypertext";
inline constexpr auto hyperlinkInterface = "org.a11y.atspi.Hyperlink";
inline constexpr auto componentInterface = "org.a11y.atspi.Component";
inline constexpr auto editableTextInterface = "org.a11y.atspi.EditableText";

/// The address of an element: a connection to the accessibility bus and an object of it.
struct ObjectReference {
    QString busName;
    QString path;
    bool operator==(const ObjectReference&) const = default;

    /// The protocol's way of saying "none".
    bool isNull() const;
};

/// The states of an element, by their bit in the protocol's list of 32-bit words.
enum class State : unsigned { Active = 1, Focused = 12, Showing = 25, ManagesDescendants = 31 };

class StateSet {
 public:
    StateSet() = default;
    explicit StateSet(std::vector<quint32> words) : words_(std::move(words)) {}
    bool has(State state) const;

 private:
    std::vector<quint32> words_;
};

/// The roles that are treated unlike others, by their number in the protocol.
enum class Role : quint32 {
    Menu = 33,
    MenuBar = 34,
    PasswordText = 40,
    PopupMenu = 41,
    Terminal = 60,
    Paragraph = 73,
};

bool isMenu(quint32 role);
inline bool isPassword(quint32 role) {
    return role == static_cast<quint32>(Role::PasswordText);
}
inline bool isTerminal(quint32 role) {
    return role == static_cast<quint32>(Role::Terminal);
}

/// What a failed call says of the element.
platform::AXError errorOf(const QString& dbusErrorName);

QDBusMessage methodCall(const ObjectReference& object, const char* interface, const char* method,
                        const QVariantList& arguments = {});
QDBusMessage propertyCall(const ObjectReference& object, const char* interface, const char* property);

/// The values of a reply. Other programs choose what they send, so a reply of another shape gives `Failure`.
std::expected<StateSet, platform::AXError> statesOf(const QDBusMessage& reply);
std::expected<std::vector<ObjectReference>, platform::AXError> objectsOf(const QDBusMessage& reply);
std::expected<ObjectReference, platform::AXError> objectOf(const QDBusMessage& reply);
std::expected<quint32, platform::AXError> numberOf(const QDBusMessage& reply);
std::expected<qint32, platform::AXError> signedNumberOf(const QDBusMessage& reply);
std::expected<QStringList, platform::AXError> namesOf(const QDBusMessage& reply);
std::expected<QString, platform::AXError> textOf(const QDBusMessage& reply);
std::expected<bool, platform::AXError> answerOf(const QDBusMessage& reply);
std::expected<std::pair<qint32, qint32>, platform::AXError> rangeOf(const QDBusMessage& reply);
/// Of four numbers, whether they come one by one or as a structure.
std::expected<platform::AXRect, platform::AXError> rectangleOf(const QDBusMessage& reply);
std::expected<QVariant, platform::AXError> propertyOf(const QDBusMessage& reply);
std::expected<ObjectReference, platform::AXError> objectInPropertyOf(const QDBusMessage& reply);

}  // namespace tavrelon::desktop::atspi
