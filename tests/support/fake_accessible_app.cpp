#include "support/fake_accessible_app.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <algorithm>
#include <array>

namespace tavrelon::testing {

namespace {

const auto rootPath = QStringLiteral("/org/a11y/atspi/accessible/root");
const auto framePath = QStringLiteral("/org/a11y/atspi/accessible/frame");
const auto menuPath = QStringLiteral("/org/a11y/atspi/accessible/menu");
const auto menuItemPath = QStringLiteral("/org/a11y/atspi/accessible/menu_item");
const auto hiddenPath = QStringLiteral("/org/a11y/atspi/accessible/hidden");
const auto hiddenFieldPath = QStringLiteral("/org/a11y/atspi/accessible/hidden_field");

/// The elements, and the numbers by which the bus knows what they are.
constexpr uint application = 75, frame = 23, menuBar = 34, menuItem = 35, panel = 39, password = 40, textField = 61;
struct Element {
    QString path;
    QString parent;
    uint role;
};
const std::array<Element, 8> elements{{{rootPath, {}, application},
                                       {framePath, rootPath, frame},
                                       {menuPath, framePath, menuBar},
                                       {menuItemPath, menuPath, menuItem},
                                       {hiddenPath, framePath, panel},
                                       {hiddenFieldPath, hiddenPath, textField},
                                       {QLatin1String(FakeAccessibleApp::firstField), framePath, textField},
                                       {QLatin1String(FakeAccessibleApp::secondField), framePath, textField}}};

constexpr uint active = 1U << 1;
constexpr uint focused = 1U << 12;
constexpr uint showing = 1U << 25;

struct Reference {
    QString busName;
    QDBusObjectPath path;
};

QDBusArgument& operator<<(QDBusArgument& argument, const Reference& reference) {
    argument.beginStructure();
    argument << reference.busName << reference.path;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Reference& reference) {
    argument.beginStructure();
    argument >> reference.busName >> reference.path;
    argument.endStructure();
    return argument;
}

}  // namespace

}  // namespace tavrelon::testing

Q_DECLARE_METATYPE(tavrelon::testing::Reference)

namespace tavrelon::testing {

FakeAccessibleApp::FakeAccessibleApp(Manners manners, QString toolkit, const QString& text, int start, int end)
    : manners_(manners), toolkit_(std::move(toolkit)), start_(start), end_(end) {
    text_ = unitsOf(text);
    qDBusRegisterMetaType<Reference>();
    qDBusRegisterMetaType<QList<Reference>>();
    qDBusRegisterMetaType<QList<uint>>();
}

bool FakeAccessibleApp::join(QDBusConnection bus) {
    bus_ = bus;
    if (!bus_.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath))
        return false;
    auto embed = QDBusMessage::createMethodCall(QStringLiteral("org.a11y.atspi.Registry"), rootPath,
                                                QStringLiteral("org.a11y.atspi.Socket"), QStringLiteral("Embed"));
    embed.setArguments({QVariant::fromValue(Reference{bus_.baseService(), QDBusObjectPath(rootPath)})});
    // The registry asks back while it embeds, so this must not wait.
    bus_.asyncCall(embed);
    say(focused_, 1);
    return true;
}

bool FakeAccessibleApp::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.path() == QLatin1String(control)) {
        if (const auto values = controlled(message))
            return connection.send(message.createReply(*values));
        return false;
    }
    calls_.push_back(message.member());
    if (isMute(message.member())) {
        message.setDelayedReply(true);
        unanswered_.push_back(message);
        return true;
    }
    if (const auto values = element(message.path(), message))
        return connection.send(message.createReply(*values));
    return connection.send(message.createErrorReply(QDBusError::UnknownObject, QStringLiteral("none")));
}

std::optional<QVariantList> FakeAccessibleApp::controlled(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    if (message.member() == QLatin1String("Text"))
        return QVariantList{stringOf(text_)};
    if (message.member() == QLatin1String("Calls"))
        return QVariantList{calls_};
    if (message.member() == QLatin1String("Focus"))
        focused_ = arguments.value(0).toString();
    else if (message.member() == QLatin1String("Say"))
        say(arguments.value(0).toString(), arguments.value(1).toInt());
    else if (message.member() == QLatin1String("Speak"))
        speak();
    else if (message.member() == QLatin1String("Deactivate"))
        active_ = false;
    else if (message.member() == QLatin1String("Claim"))
        framesClaim_ = true;
    else
        return std::nullopt;
    return QVariantList{};
}

std::optional<QVariantList> FakeAccessibleApp::element(const QString& path, const QDBusMessage& message) {
    if (roleOf(path) == 0)
        return std::nullopt;
    const auto member = message.member();
    if (member == QLatin1String("GetState"))
        return QVariantList{QVariant::fromValue(statesOf(path))};
    if (member == QLatin1String("GetRole"))
        return QVariantList{roleOf(path)};
    if (member == QLatin1String("GetInterfaces"))
        return QVariantList{interfacesOf(path)};
    if (member == QLatin1String("GetChildren")) {
        QList<Reference> children;
        for (const auto& child : elements)
            if (child.parent == path)
                children.push_back({bus_.baseService(), QDBusObjectPath(child.path)});
        return QVariantList{QVariant::fromValue(children)};
    }
    if (member == QLatin1String("Get"))
        return property(message);
    if (message.interface() == QLatin1String("org.a11y.atspi.EditableText"))
        return edit(message);
    return textOf(message);
}

std::optional<QVariantList> FakeAccessibleApp::property(const QDBusMessage& message) const {
    const auto name = message.arguments().value(1).toString();
    if (name == QLatin1String("ToolkitName"))
        return QVariantList{QVariant::fromValue(QDBusVariant(toolkit_))};
    if (name == QLatin1String("CaretOffset"))
        return QVariantList{QVariant::fromValue(QDBusVariant(end_))};
    return QVariantList{QVariant::fromValue(QDBusVariant(0))};
}

std::optional<QVariantList> FakeAccessibleApp::textOf(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    const auto member = message.member();
    if (member == QLatin1String("GetText") && manners_ == Manners::Garbled)
        return QVariantList{7};
    if (member == QLatin1String("GetText")) {
        const int from = arguments.value(0).toInt();
        const int to = arguments.value(1).toInt();
        return QVariantList{stringOf(to < 0 ? text_.mid(from) : text_.mid(from, to - from))};
    }
    if (member == QLatin1String("GetSelection"))
        return QVariantList{start_, end_};
    if (member == QLatin1String("AddSelection")) {
        start_ = arguments.value(0).toInt();
        end_ = arguments.value(1).toInt();
        return QVariantList{true};
    }
    if (member == QLatin1String("SetCaretOffset")) {
        start_ = end_ = arguments.value(0).toInt();
        return QVariantList{true};
    }
    return std::nullopt;
}

std::optional<QVariantList> FakeAccessibleApp::edit(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    const auto member = message.member();
    if (member == QLatin1String("DeleteText"))
        return QVariantList{remove(arguments.value(0).toInt(), arguments.value(1).toInt())};
    if (member == QLatin1String("InsertText"))
        return QVariantList{
            insert(arguments.value(0).toInt(), arguments.value(1).toString(), arguments.value(2).toInt())};
    if (member == QLatin1String("SetTextContents")) {
        if (manners_ != Manners::LosesForGood && manners_ != Manners::Lies)
            text_ = unitsOf(arguments.value(0).toString());
        return QVariantList{true};
    }
    return std::nullopt;
}

bool FakeAccessibleApp::remove(int start, int end) {
    if (manners_ == Manners::Lies)
        return true;
    text_.remove(start, end - start);
    start_ = end_ = start;
    return true;
}

bool FakeAccessibleApp::insert(int at, const QString& text, int length) {
    const bool drops = manners_ == Manners::Lies || manners_ == Manners::LosesAlways ||
                       manners_ == Manners::LosesForGood || (manners_ == Manners::LosesOnce && dropped_ == 0);
    if (drops) {
        ++dropped_;
        return true;
    }
    const auto whole = countsUtf16() ? text.left(length) : QString::fromUtf8(text.toUtf8().left(length));
    const auto units = unitsOf(whole);
    for (qsizetype i = 0; i < units.size(); ++i)
        text_.insert(at + i, units.at(i));
    start_ = end_ = at + static_cast<int>(units.size());
    return true;
}

void FakeAccessibleApp::speak() {
    spoken_ = true;
    for (const auto& message : std::exchange(unanswered_, {}))
        if (const auto values = element(message.path(), message))
            bus_.send(message.createReply(*values));
}

bool FakeAccessibleApp::isMute(const QString& method) const {
    if (spoken_)
        return false;
    return (manners_ == Manners::MuteReading && method == QLatin1String("GetText")) ||
           (manners_ == Manners::MuteInserting && method == QLatin1String("InsertText"));
}

void FakeAccessibleApp::say(const QString& path, int gained) {
    auto signal =
        QDBusMessage::createSignal(path, QStringLiteral("org.a11y.atspi.Event.Object"), QStringLiteral("StateChanged"));
    const auto value = QVariant::fromValue(QDBusVariant(0));
    const auto last = countsUtf16() ? QVariant::fromValue(Reference{bus_.baseService(), QDBusObjectPath(rootPath)})
                                    : QVariant(QVariantMap());
    signal.setArguments({QStringLiteral("focused"), gained, 0, value, last});
    bus_.send(signal);
}

QList<uint> FakeAccessibleApp::statesOf(const QString& path) const {
    uint states = showing;
    if (path == framePath && active_)
        states |= active;
    if (path == framePath && framesClaim_)
        states |= focused;
    if (path == hiddenPath)
        states = 0;
    if (path == focused_ || path == menuItemPath || path == hiddenFieldPath)
        states |= focused;
    return {states, 0};
}

uint FakeAccessibleApp::roleOf(const QString& path) const {
    const auto* found = std::ranges::find(elements, path, &Element::path);
    if (found == elements.end())
        return 0;
    return found->role == textField && manners_ == Manners::Password ? password : found->role;
}

QStringList FakeAccessibleApp::interfacesOf(const QString& path) const {
    QStringList interfaces{QStringLiteral("org.a11y.atspi.Accessible")};
    if (!path.contains(QLatin1String("field")) && path != menuItemPath)
        return interfaces;
    if (manners_ != Manners::WithoutText)
        interfaces.push_back(QStringLiteral("org.a11y.atspi.Text"));
    if (manners_ != Manners::WithoutText && manners_ != Manners::WithoutEditing)
        interfaces.push_back(QStringLiteral("org.a11y.atspi.EditableText"));
    return interfaces;
}

FakeAccessibleApp::Units FakeAccessibleApp::unitsOf(const QString& text) const {
    if (!countsUtf16())
        return text.toUcs4();
    Units units;
    for (const QChar unit : text)
        units.push_back(unit.unicode());
    return units;
}

QString FakeAccessibleApp::stringOf(const Units& units) const {
    if (!countsUtf16())
        return QString::fromUcs4(reinterpret_cast<const char32_t*>(units.constData()), units.size());
    QString text;
    text.reserve(units.size());
    for (const uint unit : units)
        text.append(QChar(static_cast<char16_t>(unit)));
    return text;
}

}  // namespace tavrelon::testing
