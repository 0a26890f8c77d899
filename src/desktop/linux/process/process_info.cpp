#include "desktop/linux/process/process_info.h"

#include <QFile>
#include <QSysInfo>

namespace tavrelon::desktop {

bool isProcessRunning(qint64 processIdentifier) {
    if (processIdentifier <= 0)
        return false;
    QFile stat(QStringLiteral("/proc/%1/stat").arg(processIdentifier));
    if (!stat.open(QIODevice::ReadOnly))
        return false;
    // The state follows the program's name, which is in parentheses and may itself hold some.
    const auto line = stat.readAll();
    const auto state = line.mid(line.lastIndexOf(')') + 2, 1);
    return state != "Z" && state != "X";
}

QString executableNameOf(qint64 processIdentifier) {
    const auto target = QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(processIdentifier));
    return target.sliced(target.lastIndexOf(u'/') + 1).section(QStringLiteral(" (deleted)"), 0, 0);
}

QByteArray mappedFilesOf(qint64 processIdentifier) {
    QFile maps(QStringLiteral("/proc/%1/maps").arg(processIdentifier));
    return processIdentifier > 0 && maps.open(QIODevice::ReadOnly) ? maps.readAll() : QByteArray();
}

bool isThisMachine(const QString& machine) {
    const auto shortName = [](const QString& name) { return name.section(u'.', 0, 0); };
    return machine.compare(QStringLiteral("localhost"), Qt::CaseInsensitive) == 0 ||
           (!machine.isEmpty() &&
            shortName(machine).compare(shortName(QSysInfo::machineHostName()), Qt::CaseInsensitive) == 0);
}

}  // namespace tavrelon::desktop
