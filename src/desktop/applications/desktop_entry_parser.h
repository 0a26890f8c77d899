#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <expected>

namespace tavrelon::desktop {

/// What we need of an application's desktop entry.
struct DesktopEntry {
    QString id;              ///< the file's name below its folder, without ".desktop"
    QString name;            ///< in the user's language where the entry has it
    QString startupWmClass;  ///< empty where the entry has none
    QString executable;      ///< the name of the program, without its folder; empty where it has none
    bool operator==(const DesktopEntry&) const = default;
};

enum class DesktopEntryError {
    Broken,          ///< not a desktop entry, or without a name
    NotApplication,  ///< a link or a folder
    Hidden,          ///< counts as deleted, and hides entries of the same id in later folders
};

/// The suffixes of localised keys to look for, best first, for a locale such as "zh_CN.UTF-8@pinyin".
QStringList localeSuffixes(const QString& locale);

/// Reads the main group of an entry. The text is UTF-8. Any thread.
std::expected<DesktopEntry, DesktopEntryError> parseDesktopEntry(const QString& id, const QByteArray& text,
                                                                 const QStringList& localeSuffixes);

}  // namespace tavrelon::desktop
