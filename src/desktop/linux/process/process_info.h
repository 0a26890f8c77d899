#pragma once

#include <QString>

namespace tavrelon::desktop {

/// Whether a process with this number runs on this machine; one that has ended and was not collected does not.
bool isProcessRunning(qint64 processIdentifier);

/// The file name of the program that a process runs; empty where that cannot be seen.
QString executableNameOf(qint64 processIdentifier);

/// Whether a machine's name, as windows carry it, means this machine.
bool isThisMachine(const QString& machine);

}  // namespace tavrelon::desktop
