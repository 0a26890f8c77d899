#include "desktop/linux/process/process_info.h"

#include <QFile>
#include <QSysInfo>

#include "desktop/linux/files/posix_files.h"

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

QByteArray sandboxOf(qint64 processIdentifier) {
    // Flatpak's way: the program's root holds a file that it cannot change.
    const auto info = processIdentifier > 0
                          ? readRegularFile("/proc/" + QByteArray::number(processIdentifier) + "/root/.flatpak-info")
                          : failure(ESRCH);
    bool isInstance = false;
    for (const auto& line : info.value_or(QByteArray()).split('\n')) {
        if (line.startsWith('['))
            isInstance = line.trimmed() == "[Instance]";
        else if (isInstance && line.startsWith("instance-id="))
            return line.sliced(line.indexOf('=') + 1).trimmed();
    }
    return {};
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
