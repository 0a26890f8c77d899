#pragma once

#include <QStringList>
#include <expected>

namespace tavrelon::desktop {

/// What the program was started for.
enum class StartMode {
    Dashboard,   ///< live, with the dashboard open
    Background,  ///< live, with nothing but the tray icon: the start of a session
    Help,        ///< `helpText` on standard output, then the end
    Version,     ///< the version on standard output, then the end
    Check,       ///< what works on standard output, then the end
    LetKeysGo,   ///< hotkeys that a killed program has left are given back, then the end
    Trigger,     ///< the running program does what one of its hotkeys is for, then the end
};

struct CommandLine {
    StartMode mode = StartMode::Dashboard;
    QString trigger;      ///< what to do, with `Trigger`
    bool asJson = false;  ///< for programs to read, with `Check`
};

/// Reads the arguments after the program's name. The error is a sentence for the user.
std::expected<CommandLine, QString> commandLineFrom(const QStringList& arguments);

QString helpText();

}  // namespace tavrelon::desktop
