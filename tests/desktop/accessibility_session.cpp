#include "desktop/accessibility_session.h"

#include <xcb/xcb.h>
#include <QCoreApplication>
#include <QDBusReply>
#include <QFile>
#include <QUuid>
#include <csignal>

namespace tavrelon::testing {

using namespace std::chrono_literals;
using platform::AXAttribute;
using platform::AXElement;

WindowManagerWorkspace::WindowManagerWorkspace() : connection_(xcb_connect(nullptr, nullptr)) {}

WindowManagerWorkspace::~WindowManagerWorkspace() {
    xcb_disconnect(connection_);
}

QByteArray WindowManagerWorkspace::property(quint32 window, const char* name) const {
    auto* atom = xcb_intern_atom_reply(
        connection_, xcb_intern_atom(connection_, 0, static_cast<quint16>(qstrlen(name)), name), nullptr);
    if (!atom)
        return {};
    auto* reply = xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, window, atom->atom, XCB_ATOM_ANY, 0, 1024), nullptr);
    free(atom);
    QByteArray value;
    if (reply)
        value =
            QByteArray(static_cast<const char*>(xcb_get_property_value(reply)), xcb_get_property_value_length(reply));
    free(reply);
    return value;
}

quint32 WindowManagerWorkspace::activeWindow() const {
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    const auto value = property(root, "_NET_ACTIVE_WINDOW");
    quint32 window = 0;
    if (value.size() >= 4)
        memcpy(&window, value.constData(), 4);
    return window;
}

std::optional<platform::RunningApplication> WindowManagerWorkspace::frontmostApplication() {
    if (pretend)
        return platform::RunningApplication{*pretend, {}, {}, 0};
    const auto window = activeWindow();
    const auto value = window ? property(window, "_NET_WM_PID") : QByteArray();
    if (value.size() < 4)
        return std::nullopt;
    quint32 process = 0;
    memcpy(&process, value.constData(), 4);
    return platform::RunningApplication{process, {}, {}, window};
}

std::optional<QString> WindowManagerWorkspace::frontmostWindowTitle() {
    const auto window = activeWindow();
    if (window == 0)
        return std::nullopt;
    return QString::fromUtf8(property(window, "_NET_WM_NAME"));
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

void runTool(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(program, arguments);
    process.waitForFinished(10000);
}

void pressKeys(const QStringList& keys) {
    runTool(QStringLiteral("xdotool"),
            QStringList{QStringLiteral("key"), QStringLiteral("--delay"), QStringLiteral("1")} + keys);
}

RunningProgram::RunningProgram(const QString& program, const QStringList& arguments) {
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.start(program, arguments);
    process_.waitForStarted(10000);
}

RunningProgram::~RunningProgram() {
    signal(SIGCONT);
    process_.terminate();
    process_.waitForFinished(5000);
}

void RunningProgram::signal(int number) const {
    if (process_.processId() > 0)
        ::kill(static_cast<pid_t>(process_.processId()), number);
}

AccessibilityBus::AccessibilityBus() : name_(QStringLiteral("test-") + QUuid::createUuid().toString()) {
    const QDBusReply<QString> address = QDBusConnection::sessionBus().call(
        QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                       QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress")));
    QDBusConnection::connectToBus(address.value(), name_);
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
    QFile file(folder.filePath(name));
    if (file.open(QIODevice::WriteOnly))
        file.write(text.toUtf8());
    return file.fileName();
}

}  // namespace tavrelon::testing
