#include "desktop/linux/input_method/input_method_decoding.h"

#include <QList>

namespace tavrelon::desktop {

bool isComposingFcitxMethod(const QString& uniqueName, int state) {
    constexpr int switchedOn = 2;
    return uniqueName.isEmpty() ? state == switchedOn : !uniqueName.startsWith(QStringLiteral("keyboard-"));
}

bool isComposingIBusEngine(const QString& name) {
    return !name.isEmpty() && !name.startsWith(QStringLiteral("xkb:"));
}

QString ibusAddressFileName(const QString& machineId, const QString& display) {
    const auto host = display.section(u':', 0, 0);
    const auto number = display.section(u':', 1).section(u'.', 0, 0);
    return machineId + u'-' + (host.isEmpty() ? QStringLiteral("unix") : host) + u'-' +
           (number.isEmpty() ? QStringLiteral("0") : number);
}

std::optional<QString> ibusAddressIn(const QByteArray& file) {
    constexpr QByteArrayView key = "IBUS_ADDRESS=";
    for (const auto& line : file.split('\n')) {
        if (!line.startsWith(key))
            continue;
        auto address = QString::fromUtf8(line.mid(key.size())).trimmed();
        if (!address.isEmpty())
            return address;
    }
    return std::nullopt;
}

}  // namespace tavrelon::desktop
