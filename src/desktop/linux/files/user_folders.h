#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <optional>

namespace tavrelon::desktop {

/// Where the user's files of this program belong; absolute paths, which need not exist yet.
struct UserFolders {
    QString configuration;       ///< $XDG_CONFIG_HOME/Tavrelon
    QString applicationSupport;  ///< $XDG_DATA_HOME/Tavrelon
    bool operator==(const UserFolders&) const = default;
};

/// A variable that is unset, empty or relative means the standard place below the home folder. Absent when a home
/// folder is needed and neither HOME nor `accountHome` gives one.
std::optional<UserFolders> userFolders(const QProcessEnvironment& environment, const QString& accountHome);

/// The same for this process and the account that it runs under.
std::optional<UserFolders> userFolders();

}  // namespace tavrelon::desktop
