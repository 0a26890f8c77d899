#pragma once

#include <QByteArrayView>
#include <QString>

namespace tavrelon::desktop {

/// Whether a process with this number runs on this machine; one that has ended and was not collected does not.
bool isProcessRunning(qint64 processIdentifier);

/// The file name of the program that a process runs; empty where that cannot be seen.
QString executableNameOf(qint64 processIdentifier);

/// Whether a process has loaded a library whose file name holds this; false where that cannot be seen. Reads the list
/// of all that is mapped, which takes a browser about a millisecond.
bool hasLoaded(qint64 processIdentifier, QByteArrayView library);

/// Whether a machine's name, as windows carry it, means this machine.
bool isThisMachine(const QString& machine);

}  // namespace tavrelon::desktop
