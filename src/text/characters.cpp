#include "text/characters.h"

#include <QTextBoundaryFinder>
#include <algorithm>

namespace tavrelon::text {

namespace {

/// Qt 6.4 splits a flag that follows a joined emoji into its two regional indicators.
bool isLoneFlagHalf(QStringView part) {
    if (part.size() != 2 || !part[0].isHighSurrogate())
        return false;
    const char32_t scalar = QChar::surrogateToUcs4(part[0], part[1]);
    return scalar >= 0x1F1E6 && scalar <= 0x1F1FF;
}

/// Calls `visit(start, end)` for each character until it gives false. A text of ASCII alone needs no boundary search,
/// but for CR LF, which is one character.
template <typename Visit>
void forEachCharacter(QStringView text, Visit visit) {
    const bool ascii = std::ranges::all_of(text, [](QChar c) { return c.unicode() < 0x80 && c != u'\r'; });
    if (ascii) {
        for (qsizetype i = 0; i < text.size(); ++i)
            if (!visit(i, i + 1))
                return;
        return;
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype start = 0;
    for (qsizetype end = finder.toNextBoundary(); end >= 0; end = finder.toNextBoundary()) {
        if (isLoneFlagHalf(text.sliced(start, end - start)) &&
            isLoneFlagHalf(text.sliced(end).first(std::min<qsizetype>(2, text.size() - end))))
            end = finder.toNextBoundary();
        if (!visit(start, end))
            return;
        start = end;
    }
}

bool splitsPair(const QString& text, qsizetype position) {
    return position > 0 && position < text.size() && text[position - 1].isHighSurrogate() &&
           text[position].isLowSurrogate();
}

}  // namespace

std::vector<QStringView> characters(QStringView text) {
    std::vector<QStringView> found;
    found.reserve(static_cast<std::size_t>(text.size()));
    forEachCharacter(text, [&](qsizetype start, qsizetype end) {
        found.push_back(text.sliced(start, end - start));
        return true;
    });
    return found;
}

qsizetype characterCount(QStringView text) {
    qsizetype count = 0;
    forEachCharacter(text, [&](qsizetype, qsizetype) {
        ++count;
        return true;
    });
    return count;
}

QString prefixOfCharacters(const QString& text, qsizetype count) {
    if (text.size() <= count)  // no text has more characters than units
        return text;
    qsizetype end = 0;
    forEachCharacter(text, [&](qsizetype, qsizetype characterEnd) {
        if (count-- <= 0)
            return false;
        end = characterEnd;
        return true;
    });
    return text.first(end);
}

QString withoutLastCharacter(const QString& text) {
    qsizetype last = 0;
    forEachCharacter(text, [&](qsizetype start, qsizetype) {
        last = start;
        return true;
    });
    return text.first(last);
}

QString trimmed(const QString& text) {
    return text.trimmed();
}

bool isBlank(QStringView text) {
    return std::ranges::all_of(text, [](QChar c) { return c.isSpace(); });
}

std::optional<QString> trimmedOrAbsent(const QString& text) {
    auto kept = text.trimmed();
    if (kept.isEmpty())
        return std::nullopt;
    return kept;
}

bool isASCIIOnly(QStringView text) {
    return std::ranges::all_of(text, [](QChar c) { return c.unicode() < 0x80; });
}

std::optional<QString> substring(const QString& text, Utf16Range range) {
    if (range.location < 0 || range.length < 0 || range.location > text.size() ||
        range.length > text.size() - range.location)
        return std::nullopt;
    if (splitsPair(text, range.location) || splitsPair(text, range.location + range.length))
        return std::nullopt;
    return text.sliced(range.location, range.length);
}

bool containsIgnoringCase(const QString& text, const QString& word) {
    return text.toCaseFolded().contains(word.toCaseFolded());
}

}  // namespace tavrelon::text
