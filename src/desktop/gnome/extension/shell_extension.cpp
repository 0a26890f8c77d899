#include "desktop/gnome/extension/shell_extension.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QDir>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>
#include <chrono>
#include <functional>

namespace tavrelon::desktop {

namespace {

using platform::AuthorizationStatus;

const QString identifier = QStringLiteral("tavrelon@tavrelon.org");
const QString service = QStringLiteral("org.gnome.Shell");
constexpr int callLimitMs = 3000;
/// From this version on the shell takes extensions that are modules, and no others.
constexpr int firstOfModules = 45;

/// Where the package or the build has put the variants.
QDir sources() {
    const QDir program(QCoreApplication::applicationDirPath());
    const QDir installed(program.absoluteFilePath(QStringLiteral("../../share/tavrelon/gnome-shell")));
    return installed.exists() ? installed
                              : QDir(program.absoluteFilePath(QStringLiteral("../share/tavrelon/gnome-shell")));
}

QDir destination() {
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                QStringLiteral("/gnome-shell/extensions/") + identifier);
}

bool write(const QString& path, const QByteArray& bytes) {
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

bool copyAll(const QDir& from, const QDir& to) {
    const auto names = from.entryList(QDir::Files);
    for (const auto& name : names) {
        QFile file(from.filePath(name));
        if (!file.open(QIODevice::ReadOnly) || !write(to.filePath(name), file.readAll()))
            return false;
    }
    return !names.isEmpty();
}

bool install(int shellVersion) {
    const auto from = sources();
    const auto variant = shellVersion < firstOfModules ? QStringLiteral("before-45") : QStringLiteral("from-45");
    const auto to = destination();
    return to.mkpath(QStringLiteral(".")) && copyAll(from.filePath(QStringLiteral("common")), to) &&
           copyAll(from.filePath(variant), to) &&
           write(to.filePath(QStringLiteral("program")), QCoreApplication::applicationFilePath().toUtf8() + '\n');
}

/// Asks the shell without waiting for it.
void ask(QDBusMessage question, std::function<void(const QDBusMessage& answer)> answered) {
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question, callLimitMs), qApp);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, answered = std::move(answered)] {
        answered(watcher->reply());
        watcher->deleteLater();
    });
}

/// A shell switches on only what it has found at its start; the rest it reads from the settings at the next one.
void switchOnForNextLogin() {
    static const auto script = QStringLiteral(
        "list=$(gsettings get org.gnome.shell enabled-extensions) || exit; case $list in *\"'$1'\"*) exit;; esac; "
        "list=${list#@as }; list=${list%]}; [ \"$list\" = '[' ] || list=\"$list, \"; "
        "gsettings set org.gnome.shell enabled-extensions \"$list'$1']\"");
    QProcess::startDetached(QStringLiteral("sh"), {QStringLiteral("-c"), script, QStringLiteral("sh"), identifier});
}

void switchOn(platform::Log& log) {
    auto enable =
        QDBusMessage::createMethodCall(service, QStringLiteral("/org/gnome/Shell"),
                                       QStringLiteral("org.gnome.Shell.Extensions"), QStringLiteral("EnableExtension"));
    enable.setArguments({identifier});
    ask(enable, [&log](const QDBusMessage& answer) {
        if (answer.type() == QDBusMessage::ReplyMessage && answer.arguments().value(0).toBool()) {
            log.line(QStringLiteral("[Session] GNOME's extension is on; Tavrelon uses it from its next start on"));
            return;
        }
        switchOnForNextLogin();
        log.line(QStringLiteral("[Session] GNOME's extension is installed; the shell loads it at the next login"));
    });
}

void request(platform::Log& log) {
    auto version =
        QDBusMessage::createMethodCall(service, QStringLiteral("/org/gnome/Shell"),
                                       QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    version.setArguments({service, QStringLiteral("ShellVersion")});
    ask(version, [&log](const QDBusMessage& answer) {
        const auto told = answer.arguments().value(0).value<QDBusVariant>().variant().toString();
        const int major = told.section(u'.', 0, 0).toInt();
        if (major == 0)
            log.line(QStringLiteral("[Session] GNOME's shell does not tell its version; nothing was installed"));
        else if (!install(major))
            log.line(QStringLiteral("[Session] GNOME's extension cannot be written to %1").arg(destination().path()));
        else
            switchOn(log);
    });
}

}  // namespace

platform::Permission shellExtension(platform::Log& log, bool isServed) {
    return {[isServed] {
                if (isServed)
                    return AuthorizationStatus::Authorized;
                return destination().exists(QStringLiteral("program")) ? AuthorizationStatus::Restricted
                                                                       : AuthorizationStatus::Denied;
            },
            [&log] { request(log); }};
}

}  // namespace tavrelon::desktop
