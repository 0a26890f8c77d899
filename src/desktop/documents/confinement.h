#pragma once

#include <QList>
#include <QString>
#include <optional>

/// What the reader of foreign files gives up before it looks at the first byte of one, so that a file that takes it
/// over has gained a process that can compute and answer, and nothing else. Linux.
namespace tavrelon::desktop {

/// Closes every descriptor but the three standard ones, and bounds what this process may cost: 1 GiB of addresses, 20 s
/// of processor, no byte written to a file, no memory dump. It ends with the process that started it.
void boundThisProcess();

/// What the kernel took part in.
struct Confinement {
    bool filesClosed = false;    ///< nothing but the readable folders can be opened (Landlock)
    bool callsFiltered = false;  ///< no sockets, programs, tracing, or opening for writing (seccomp)
};

/// Confines this process for good, the threads it starts later included. `readable` are the files and folders that it
/// may still read, of those that exist. Call it while there is one thread.
Confinement confineThisProcess(const QList<QByteArray>& readable);

/// What this machine lacks for the whole of it, for the log; absent where it lacks nothing.
std::optional<QString> confinementGap();

/// The version of Landlock in this kernel; 0 where it has none or is told not to use it.
int landlockVersion();

/// Whether the kernel filters calls and those of this machine are known.
bool canFilterCalls();

/// The part by Landlock; false where the kernel has none.
bool closeFiles(const QList<QByteArray>& readable);

/// The part by seccomp; false where it cannot be had.
bool filterCalls();

}  // namespace tavrelon::desktop
