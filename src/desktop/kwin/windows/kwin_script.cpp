#include "desktop/kwin/windows/kwin_script.h"

#include <unistd.h>

#include <QDBusMessage>
#include <QDir>
#include <QFile>

#include "desktop/linux/process/process_info.h"

namespace tavrelon::desktop {

namespace {

const QString kwin = QStringLiteral("org.kde.KWin");
const QString objectPath = QStringLiteral("/org/tavrelon/windows");
const QString interfaceName = QStringLiteral("org.tavrelon.Windows");
const KWinBus::Address scripting{
    .service = kwin, .path = QStringLiteral("/Scripting"), .interface = QStringLiteral("org.kde.kwin.Scripting")};
const QString namePrefix = QStringLiteral("tavrelon-windows-");
const QString fileSuffix = QStringLiteral(".js");

/// For KWin 5, and with the names of KWin 6. A null comes between two windows.
const QString script = QStringLiteral(R"(
const is6 = workspace.windowActivated !== undefined;
const followed = new Set();
function tell(method, argument) { callDBus("%1", "%2", "%3", method, argument); }
function active() { return is6 ? workspace.activeWindow : workspace.activeClient; }
function area(r) { return {x: r.x, y: r.y, width: r.width, height: r.height}; }
function text(value) { return value === null || value === undefined ? "" : String(value); }
function report(w) {
    if (!w) { tell("Active", ""); return; }
    const id = String(w.internalId);
    if (!followed.has(id)) {
        followed.add(id);
        const again = () => { if (active() === w) report(w); };
        w.frameGeometryChanged.connect(again);
        w.captionChanged.connect(again);
    }
    const isNative = w.desktopFileName !== null && w.desktopFileName !== undefined;
    tell("Active", JSON.stringify({id: id, pid: w.pid, title: text(w.caption), class: text(w.resourceClass),
        instance: text(w.resourceName), entry: text(w.desktopFileName), isNative: isNative,
        frame: area(w.frameGeometry), surface: area(w.bufferGeometry)}));
}
function gone(w) { followed.delete(String(w.internalId)); tell("Gone", String(w.internalId)); }
(is6 ? workspace.windowActivated : workspace.clientActivated).connect(report);
(is6 ? workspace.windowRemoved : workspace.clientRemoved).connect(gone);
report(active());
)");

/// The user's own folder, which ends with the session, as a script does.
QDir folder() {
    return {qEnvironmentVariable("XDG_RUNTIME_DIR", QDir::tempPath())};
}

void unload(KWinBus& bus, const QString& name) {
    bus.call(scripting, QStringLiteral("unloadScript"), {name});
    QFile::remove(folder().filePath(name + fileSuffix));
}

QString ownName() {
    return namePrefix + QString::number(::getpid());
}

/// A process that was killed has left its script, which then tells nobody.
void unloadLeftOvers(KWinBus& bus) {
    for (const auto& file : folder().entryList({namePrefix + u'*' + fileSuffix}, QDir::Files)) {
        const auto name = file.chopped(fileSuffix.size());
        if (!isProcessRunning(name.sliced(namePrefix.size()).toLongLong()))
            unload(bus, name);
    }
}

}  // namespace

KWinScript::KWinScript(std::shared_ptr<KWinBus> bus, Calls calls) : bus_(std::move(bus)), calls_(std::move(calls)) {
    watcher_.setConnection(bus_->connection());
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    watcher_.addWatchedService(kwin);
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] { load(); });
}

std::expected<std::unique_ptr<KWinScript>, QString> KWinScript::start(std::shared_ptr<KWinBus> bus, Calls calls) {
    unloadLeftOvers(*bus);
    std::unique_ptr<KWinScript> started(new KWinScript(std::move(bus), std::move(calls)));
    if (!started->bus_->connection().registerVirtualObject(objectPath, started.get()) || !started->load())
        return std::unexpected(QStringLiteral("KWin takes no script, so nothing tells which window is in front."));
    return started;
}

KWinScript::~KWinScript() {
    bus_->connection().unregisterObject(objectPath);
    unload(*bus_, ownName());
}

bool KWinScript::load() {
    const auto name = ownName();
    owner_ = bus_->ownerOf(kwin);
    unload(*bus_, name);
    QFile file(folder().filePath(name + fileSuffix));
    if (owner_.isEmpty() || !file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return false;
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    file.write(script.arg(bus_->connection().baseService(), objectPath, interfaceName).toUtf8());
    file.close();
    const auto loaded =
        bus_->call(scripting, QStringLiteral("loadScript"), {file.fileName(), name}, KWinBus::startLimit);
    const int number = loaded && !loaded->isEmpty() ? loaded->front().toInt() : -1;
    if (number < 0)
        return false;
    // KWin 5 and 6 have it at different places.
    for (const auto& place : {QStringLiteral("/%1"), QStringLiteral("/Scripting/Script%1")})
        if (bus_->call({.service = kwin, .path = place.arg(number), .interface = QStringLiteral("org.kde.kwin.Script")},
                       QStringLiteral("run"), {}, KWinBus::startLimit))
            return true;
    return false;
}

bool KWinScript::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.interface() != interfaceName || message.service() != owner_ || message.arguments().isEmpty())
        return false;
    const auto argument = message.arguments().front().toString();
    if (message.member() == u"Active")
        calls_.active(argument);
    else if (message.member() == u"Gone")
        calls_.gone(argument);
    else
        return false;
    connection.send(message.createReply());
    return true;
}

}  // namespace tavrelon::desktop
