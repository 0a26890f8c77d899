#pragma once

#include <QString>
#include <QStringView>
#include <optional>
#include <vector>

namespace tavrelon::text {

/// A range of a text in UTF-16 units.
struct Utf16Range {
    qint64 location = 0;
    qint64 length = 0;
    bool operator==(const Utf16Range&) const = default;
};

/// The text's user-perceived characters (extended grapheme clusters), as views into `text`.
std::vector<QStringView> characters(QStringView text);

/// How many user-perceived characters the text has.
qsizetype characterCount(QStringView text);

/// The first `count` user-perceived characters, or the whole text if it has fewer.
QString prefixOfCharacters(const QString& text, qsizetype count);

/// The text without its last user-perceived character; the empty text stays empty.
QString withoutLastCharacter(const QString& text);

/// The text without white space and line ends at either end.
QString trimmed(const QString& text);

/// Whether nothing but white space and line ends is in the text.
bool isBlank(QStringView text);

/// The trimmed text, absent when nothing is left of it.
std::optional<QString> trimmedOrAbsent(const QString& text);

/// True when every Unicode scalar is below 128; true for the empty text.
bool isASCIIOnly(QStringView text);

/// The part of `text` that `range` names; absent when it does not lie within the text or would split a surrogate pair.
std::optional<QString> substring(const QString& text, Utf16Range range);

/// Whether `word` stands in `text` without regard to case.
bool containsIgnoringCase(const QString& text, const QString& word);

}  // namespace tavrelon::text
