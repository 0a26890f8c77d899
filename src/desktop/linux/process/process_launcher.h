#pragma once

#include <QStringList>
#include <QUrl>

namespace tavrelon::desktop {

/// Starts a program that runs on its own from then on; false when it cannot be started. It gets signals as usual, of
/// which this process blocks some.
bool startProgram(const QString& program, const QStringList& arguments);

/// Gives an address to the program that the desktop has for it, which runs on its own from then on. False when the
/// address is not absolute or no such program can be started.
bool openInDesktop(const QUrl& url);

}  // namespace tavrelon::desktop
