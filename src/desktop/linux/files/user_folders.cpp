#include "desktop/linux/files/user_folders.h"

#include <pwd.h>
#include <unistd.h>

#include <QFile>

namespace tavrelon::desktop {

namespace {

constexpr QLatin1StringView programFolder("Tavrelon");

bool isAbsolute(const QString& path) {
    return path.startsWith(u'/');
}

QString homeOfAccount() {
    const auto* account = ::getpwuid(::getuid());
    return account ? QFile::decodeName(account->pw_dir) : QString();
}

}  // namespace

std::optional<UserFolders> userFolders(const QProcessEnvironment& environment, const QString& accountHome) {
    auto home = environment.value(QStringLiteral("HOME"));
    if (!isAbsolute(home))
        home = accountHome;
    const auto base = [&](const char* variable, const char* below) {
        auto value = environment.value(QString::fromLatin1(variable));
        if (isAbsolute(value))
            return value;
        return isAbsolute(home) ? home + QString::fromLatin1(below) : QString();
    };
    const auto configuration = base("XDG_CONFIG_HOME", "/.config");
    const auto data = base("XDG_DATA_HOME", "/.local/share");
    if (configuration.isEmpty() || data.isEmpty())
        return std::nullopt;
    return UserFolders{configuration + u'/' + programFolder, data + u'/' + programFolder};
}

std::optional<UserFolders> userFolders() {
    return userFolders(QProcessEnvironment::systemEnvironment(), homeOfAccount());
}

}  // namespace tavrelon::desktop
