#include "desktop/wayland/sway/sway_left_overs.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "desktop/wayland/sway/sway_combinations.h"

namespace tavrelon::desktop {

namespace {

/// Empty where there is no folder for it.
QString recordPath() {
    const auto folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const auto socket = QFileInfo(qEnvironmentVariable("SWAYSOCK")).fileName();
    return folder.isEmpty() ? QString() : folder + QStringLiteral("/tavrelon-keys-") + socket;
}

}  // namespace

void SwayLeftOvers::remember(const QString& made) {
    const auto path = recordPath();
    if (path.isEmpty() || !remembered_.insert(made).second)
        return;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    for (const auto& each : remembered_)
        file.write(each.toUtf8() + '\n');
    file.commit();
}

void SwayLeftOvers::forget() {
    if (!remembered_.empty())
        QFile::remove(recordPath());
    remembered_.clear();
}

void SwayLeftOvers::remove(SwayIpc& ipc) {
    QFile file(recordPath());
    if (!file.open(QIODevice::ReadOnly))
        return;
    while (!file.atEnd() && !ipc.isBroken()) {
        const auto made = QString::fromUtf8(file.readLine()).trimmed();
        // Nothing but what this class writes there.
        if (made.startsWith(u"bind") && made.contains(u"Group") && !made.contains(u';') && !made.contains(u','))
            ipc.run(unbinding(made));
    }
    if (!ipc.isBroken())
        file.remove();
}

}  // namespace tavrelon::desktop
