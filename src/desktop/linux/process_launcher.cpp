#include "desktop/linux/process_launcher.h"

#include <QProcess>
#include <QStandardPaths>

namespace tavrelon::desktop {

bool openInDesktop(const QUrl& url) {
    if (!url.isValid() || url.scheme().isEmpty())
        return false;
    const auto opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    return !opener.isEmpty() && QProcess::startDetached(opener, {QString::fromLatin1(url.toEncoded())});
}

}  // namespace tavrelon::desktop
