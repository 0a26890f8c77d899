#pragma once

#include <QByteArray>
#include <QString>

namespace tavrelon::desktop {

/// Whether a process with this number runs on this machine; one that has ended and was not collected does not.
bool isProcessRunning(qint64 processIdentifier);

/// The file name of the program that a process runs; empty where that cannot be seen.
QString executableNameOf(qint64 processIdentifier);

/// The sandbox that a process is in, named anew each time a program is started in one; empty where it is in none that
/// tells. The proxy through which what is in it reaches the buses is in the same one.
QByteArray sandboxOf(qint64 processIdentifier);

/// The list of all that a process has mapped, with the paths of its libraries; empty where that cannot be seen. It
/// takes a browser about a millisecond.
QByteArray mappedFilesOf(qint64 processIdentifier);

/// Whether a machine's name, as windows carry it, means this machine.
bool isThisMachine(const QString& machine);

}  // namespace tavrelon::desktop
