#pragma once

#include <QHash>
#include <QStringList>
#include <memory>
#include <optional>

#include "desktop/applications/desktop_entry_parser.h"
#include "platform/workspace.h"

namespace tavrelon::desktop {

/// How a window names its application. Empty texts are unknown.
struct ApplicationNames {
    QString applicationId{};
    QString windowClass{};
    QString windowInstance{};
    QString executable{};  ///< the program's file name
    bool operator==(const ApplicationNames&) const = default;
};
size_t qHash(const ApplicationNames& names, size_t seed = 0) noexcept;

/// The desktop entries of the installed applications. A file is read when it is first needed, and what was found for
/// an application is kept; entries that cannot be read are left out. Main thread.
class DesktopEntryCatalog {
 public:
    /// The folders come in the order of their precedence.
    DesktopEntryCatalog(QStringList folders, QStringList localeSuffixes)
        : folders_(std::move(folders)), localeSuffixes_(std::move(localeSuffixes)) {}

    /// The user's folder, then the system's, and the language of messages, all as the environment says.
    static DesktopEntryCatalog ofEnvironment();

    /// The entry of an application: by its id, then by the class or instance of its windows, then by its program.
    std::optional<DesktopEntry> find(const ApplicationNames& names);

    /// The application as its entry names it, or else its window; process and window are left for the caller to say.
    platform::RunningApplication applicationOf(const ApplicationNames& names);

 private:
    std::optional<DesktopEntry> search(const ApplicationNames& names);
    std::optional<DesktopEntry> byId(const QString& id);
    const QHash<QString, DesktopEntry>& all();

    QStringList folders_;
    QStringList localeSuffixes_;
    QHash<ApplicationNames, std::optional<DesktopEntry>> found_;
    std::optional<QHash<QString, DesktopEntry>> all_;
};

}  // namespace tavrelon::desktop
