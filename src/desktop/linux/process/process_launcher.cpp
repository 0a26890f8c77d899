#include "desktop/linux/process/process_launcher.h"

#include <signal.h>

#include <QProcess>
#include <QStandardPaths>

namespace tavrelon::desktop {

bool startProgram(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setChildProcessModifier([] {
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
    });
    return process.startDetached();
}

bool openInDesktop(const QUrl& url) {
    if (!url.isValid() || url.scheme().isEmpty())
        return false;
    const auto opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    return !opener.isEmpty() && startProgram(opener, {QString::fromLatin1(url.toEncoded())});
}

}  // namespace tavrelon::desktop
