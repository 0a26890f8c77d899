#pragma once

#include <QUrl>

namespace tavrelon::desktop {

/// Gives an address to the program that the desktop has for it, which runs on its own from then on. False when the
/// address is not absolute or no such program can be started.
bool openInDesktop(const QUrl& url);

}  // namespace tavrelon::desktop
