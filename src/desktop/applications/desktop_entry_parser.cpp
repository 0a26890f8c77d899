#include "desktop/applications/desktop_entry_parser.h"

#include <QHash>
#include <optional>

namespace tavrelon::desktop {

namespace {

using Keys = QHash<QString, QString>;

/// The keys of the group [Desktop Entry]; absent where there is no such group.
std::optional<Keys> mainGroup(const QByteArray& text) {
    std::optional<Keys> keys;
    for (const auto& bytes : text.split('\n')) {
        const auto line = bytes.trimmed();
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        if (line.startsWith('[')) {
            if (keys)
                break;
            if (line == "[Desktop Entry]")
                keys.emplace();
            continue;
        }
        const auto equals = line.indexOf('=');
        if (!keys || equals < 0)
            continue;
        const auto key = QString::fromUtf8(line.first(equals).trimmed());
        if (!keys->contains(key))
            keys->insert(key, QString::fromUtf8(line.sliced(equals + 1).trimmed()));
    }
    return keys;
}

QString unescaped(const QString& value) {
    QString result;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] != u'\\' || i + 1 == value.size()) {
            result += value[i];
            continue;
        }
        switch (value[++i].unicode()) {
            case u's':
                result += u' ';
                break;
            case u'n':
                result += u'\n';
                break;
            case u't':
                result += u'\t';
                break;
            case u'r':
                result += u'\r';
                break;
            default:
                result += value[i];
        }
    }
    return result;
}

QString localized(const Keys& keys, const QString& key, const QStringList& suffixes) {
    for (const auto& suffix : suffixes) {
        const auto found = keys.constFind(key + u'[' + suffix + u']');
        if (found != keys.constEnd() && !found->isEmpty())
            return unescaped(*found);
    }
    return unescaped(keys.value(key));
}

/// The program that a command line starts: its first word, which may be quoted.
QString programOf(const QString& commandLine) {
    const auto command = unescaped(commandLine);
    const auto end = command.startsWith(u'"') ? command.indexOf(u'"', 1) : command.indexOf(u' ');
    const auto start = command.startsWith(u'"') ? 1 : 0;
    const auto word = command.mid(start, end < 0 ? -1 : end - start);
    return word.sliced(word.lastIndexOf(u'/') + 1);
}

}  // namespace

QStringList localeSuffixes(const QString& locale) {
    const auto at = locale.indexOf(u'@');
    const auto modifier = at < 0 ? QString() : locale.sliced(at);
    const auto plain = locale.first(at < 0 ? locale.size() : at).section(u'.', 0, 0);
    const auto language = plain.section(u'_', 0, 0);
    if (plain.isEmpty() || plain == QStringLiteral("C") || plain == QStringLiteral("POSIX"))
        return {};
    QStringList suffixes{plain + modifier, plain, language + modifier, language};
    suffixes.removeDuplicates();
    return suffixes;
}

std::expected<DesktopEntry, DesktopEntryError> parseDesktopEntry(const QString& id, const QByteArray& text,
                                                                 const QStringList& localeSuffixes) {
    const auto keys = mainGroup(text);
    if (!keys)
        return std::unexpected(DesktopEntryError::Broken);
    if (keys->value(QStringLiteral("Hidden")) == QStringLiteral("true"))
        return std::unexpected(DesktopEntryError::Hidden);
    if (keys->value(QStringLiteral("Type"), QStringLiteral("Application")) != QStringLiteral("Application"))
        return std::unexpected(DesktopEntryError::NotApplication);
    DesktopEntry entry{.id = id,
                       .name = localized(*keys, QStringLiteral("Name"), localeSuffixes),
                       .startupWmClass = unescaped(keys->value(QStringLiteral("StartupWMClass"))),
                       .executable = programOf(keys->value(QStringLiteral("Exec")))};
    if (entry.name.isEmpty())
        return std::unexpected(DesktopEntryError::Broken);
    return entry;
}

}  // namespace tavrelon::desktop
