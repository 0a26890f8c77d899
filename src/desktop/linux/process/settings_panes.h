#pragma once

#include <QStringList>
#include <functional>
#include <optional>

namespace tavrelon::desktop {

/// The pages of a desktop's own settings where the user allows things.
enum class SettingsPane { Accessibility, ScreenCapture, Microphone };

/// The program and its arguments that show the pane on this desktop (`desktops` is the list of XDG_CURRENT_DESKTOP), or
/// nothing if no program that `exists` does.
std::optional<QStringList> settingsCommand(SettingsPane pane, const QStringList& desktops,
                                           const std::function<bool(const QString& program)>& exists);

/// Shows the pane, in a program that runs on its own from then on. False when there is none.
bool openSettingsPane(SettingsPane pane);

/// Asks the session to start its accessibility bus and to tell toolkits to use it. Does not wait for the answer.
void switchAccessibilityOn();

}  // namespace tavrelon::desktop
