#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

/// What input method frameworks say about the input method in use, as values. Any thread.
namespace tavrelon::desktop {

/// Whether a Fcitx input method composes, by its unique name: plain keyboards are named "keyboard-<layout>". The name
/// is empty until the focused field has got its first key; what is known then is whether the user has input methods
/// switched on there, which `state` 2 stands for.
bool isComposingFcitxMethod(const QString& uniqueName, int state);

/// Whether an IBus engine composes, by its name: plain keyboards are named "xkb:<layout>:<variant>:<language>".
bool isComposingIBusEngine(const QString& name);

/// The name of the file in which an IBus daemon leaves its address for the programs of a display, such as
/// "0123abcd-unix-0".
QString ibusAddressFileName(const QString& machineId, const QString& display);

/// The address in such a file; absent where it has none.
std::optional<QString> ibusAddressIn(const QByteArray& file);

}  // namespace tavrelon::desktop
