#include "desktop/applications/desktop_entry_catalog.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QSet>
#include <algorithm>
#include <array>

#include "desktop/applications/application_identifiers.h"

namespace tavrelon::desktop {

namespace {

constexpr qint64 mostEntryBytes = 256 * 1024;

QString environment(const char* name, const QString& otherwise) {
    const auto value = qEnvironmentVariable(name);
    return value.isEmpty() ? otherwise : value;
}

std::optional<QByteArray> readEntry(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.read(mostEntryBytes);
}

/// Programs that run other programs: their own entries say nothing about the window.
bool runsOthers(const QString& executable) {
    static const std::array prefixes{QStringLiteral("python"), QStringLiteral("java"),    QStringLiteral("perl"),
                                     QStringLiteral("ruby"),   QStringLiteral("node"),    QStringLiteral("electron"),
                                     QStringLiteral("wine"),   QStringLiteral("flatpak"), QStringLiteral("bwrap"),
                                     QStringLiteral("gjs"),    QStringLiteral("snap"),    QStringLiteral("env"),
                                     QStringLiteral("sh"),     QStringLiteral("bash"),    QStringLiteral("dash")};
    return std::ranges::any_of(prefixes, [&](const QString& prefix) {
        const auto rest =
            executable.startsWith(prefix) ? QStringView(executable).sliced(prefix.size()) : QStringView(u"x");
        return std::ranges::all_of(rest, [](QChar c) { return c.isDigit() || c == u'.' || c == u'-'; });
    });
}

bool same(const QString& first, const QString& second) {
    return !first.isEmpty() && first.compare(second, Qt::CaseInsensitive) == 0;
}

}  // namespace

size_t qHash(const ApplicationNames& names, size_t seed) noexcept {
    return qHashMulti(seed, names.applicationId, names.windowClass, names.windowInstance, names.executable);
}

DesktopEntryCatalog DesktopEntryCatalog::ofEnvironment() {
    QStringList folders{environment("XDG_DATA_HOME", QDir::homePath() + QStringLiteral("/.local/share"))};
    folders +=
        environment("XDG_DATA_DIRS", QStringLiteral("/usr/local/share:/usr/share")).split(u':', Qt::SkipEmptyParts);
    for (auto& folder : folders)
        folder += QStringLiteral("/applications");
    folders.removeDuplicates();
    const auto locale = environment("LC_ALL", environment("LC_MESSAGES", environment("LANG", QStringLiteral("C"))));
    return {folders, tavrelon::desktop::localeSuffixes(locale)};
}

std::optional<DesktopEntry> DesktopEntryCatalog::find(const ApplicationNames& names) {
    const auto known = found_.constFind(names);
    if (known != found_.constEnd())
        return *known;
    return *found_.insert(names, search(names));
}

platform::RunningApplication DesktopEntryCatalog::applicationOf(const ApplicationNames& names) {
    const auto entry = find(names);
    const auto& own = names.windowClass.isEmpty() ? names.applicationId : names.windowClass;
    platform::RunningApplication application;
    application.bundleIdentifier = bundleIdentifierOf(
        {entry ? entry->id : QString(), names.applicationId, names.windowClass, names.windowInstance});
    if (entry)
        application.localizedName = entry->name;
    else if (!own.isEmpty())
        application.localizedName = own;
    return application;
}

std::optional<DesktopEntry> DesktopEntryCatalog::search(const ApplicationNames& names) {
    // Most applications name their entry after one of these, which spares reading all the others.
    for (const auto& id : {names.applicationId, names.windowClass, names.windowClass.toLower(), names.windowInstance}) {
        if (auto entry = byId(id))
            return entry;
    }
    const auto& entries = all();
    const auto firstWhere = [&](const auto& matches) -> std::optional<DesktopEntry> {
        const DesktopEntry* best = nullptr;
        for (const auto& entry : entries) {
            if (matches(entry) && (!best || entry.id < best->id))
                best = &entry;
        }
        return best ? std::optional(*best) : std::nullopt;
    };
    if (auto entry = firstWhere([&](const DesktopEntry& candidate) {
            return same(candidate.startupWmClass, names.windowClass) ||
                   same(candidate.startupWmClass, names.windowInstance);
        }))
        return entry;
    if (auto entry = firstWhere([&](const DesktopEntry& candidate) {
            // Reverse-domain ids end in the application's own name.
            return same(candidate.id.section(u'.', -1), names.windowClass) ||
                   same(candidate.executable, names.windowInstance);
        }))
        return entry;
    if (runsOthers(names.executable))
        return std::nullopt;
    return firstWhere([&](const DesktopEntry& candidate) { return same(candidate.executable, names.executable); });
}

std::optional<DesktopEntry> DesktopEntryCatalog::byId(const QString& id) {
    if (id.isEmpty() || id.contains(u'/'))
        return std::nullopt;
    for (const auto& folder : folders_) {
        const auto text = readEntry(folder + u'/' + id + QStringLiteral(".desktop"));
        if (!text)
            continue;
        const auto entry = parseDesktopEntry(id, *text, localeSuffixes_);
        if (entry)
            return *entry;
        if (entry.error() == DesktopEntryError::Hidden)
            break;
    }
    return std::nullopt;
}

const QHash<QString, DesktopEntry>& DesktopEntryCatalog::all() {
    if (all_)
        return *all_;
    all_.emplace();
    QSet<QString> hidden;
    for (const auto& folder : folders_) {
        QDirIterator files(folder, {QStringLiteral("*.desktop")}, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const auto path = files.next();
            auto id = path.sliced(folder.size() + 1).chopped(8);
            id.replace(u'/', u'-');
            if (all_->contains(id) || hidden.contains(id))
                continue;
            const auto text = readEntry(path);
            const auto entry =
                text ? parseDesktopEntry(id, *text, localeSuffixes_) : std::unexpected(DesktopEntryError::Broken);
            if (entry)
                all_->insert(id, *entry);
            else if (entry.error() == DesktopEntryError::Hidden)
                hidden.insert(id);
        }
    }
    return *all_;
}

}  // namespace tavrelon::desktop
