#include "generation/error_text.h"

#include <QSet>
#include <vector>

#include "text/characters.h"
#include "text/json.h"

namespace tavrelon::generation::error_text {

using text::Json;

namespace {

/// A run this long that stands in both texts is no chance. In UTF-16, like the one below.
constexpr qsizetype window = 12;

/// How much of an error is looked through; the user sees less.
constexpr qsizetype longestRead = 1'000;

/// A whole line of the prompt, or what follows its label, may be shorter than a window: a typed word.
constexpr qsizetype shortestLine = 3;

constexpr char16_t mark = u'…';

/// The texts of a request; pictures have other keys, or are addresses.
void collectTexts(const Json& json, QStringList& texts) {
    for (const auto& [key, value] : json.items()) {
        const bool named = key == "content" || key == "text" || key == "prompt";
        if (value.is_string() && named)
            texts << text::stringFrom(value);
        else if (value.is_structured())
            collectTexts(value, texts);
    }
}

/// None for a request without a document.
QStringList textsSent(const QByteArray& sent) {
    QStringList texts;
    try {
        collectTexts(text::parseJson(sent), texts);
        return texts;
    } catch (const text::JsonError&) {
        return {};
    }
}

/// Letters of these scripts stand in words; others follow each other without a space.
bool isWordCharacter(QChar c) {
    return c.isLetterOrNumber() && c.unicode() < 0x2E80;
}

void hideWhole(QString& text, const QString& piece) {
    if (piece.size() < shortestLine || piece.size() >= window)
        return;
    for (auto at = text.indexOf(piece); at >= 0; at = text.indexOf(piece, at + 1)) {
        const auto end = at + piece.size();
        const bool inWord = (at > 0 && isWordCharacter(text[at - 1]) && isWordCharacter(piece.front())) ||
                            (end < text.size() && isWordCharacter(text[end]) && isWordCharacter(piece.back()));
        if (!inWord)
            text.replace(at, piece.size(), QChar(mark));
    }
}

void hideLines(QString& text, const QString& prompt) {
    for (const auto& line : prompt.split(u'\n')) {
        hideWhole(text, line.simplified());
        if (const auto label = line.indexOf(QLatin1StringView(": ")); label >= 0)
            hideWhole(text, line.sliced(label + 2).simplified());
    }
}

/// Hides each run of `window` characters and more that stands in the prompt too. One pass over each.
QString withoutRuns(const QString& text, const QString& prompt) {
    if (text.size() < window)
        return text;
    QSet<QStringView> runs;
    for (qsizetype at = 0; at + window <= text.size(); ++at)
        runs.insert(QStringView(text).sliced(at, window));
    QSet<QStringView> repeated;
    for (qsizetype at = 0; at + window <= prompt.size(); ++at)
        if (const auto run = QStringView(prompt).sliced(at, window); runs.contains(run))
            repeated.insert(run);
    QString kept;
    qsizetype hiddenUntil = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (at + window <= text.size() && repeated.contains(QStringView(text).sliced(at, window))) {
            if (at >= hiddenUntil)
                kept += QChar(mark);
            hiddenUntil = at + window;
        }
        if (at >= hiddenUntil)
            kept += text[at];
    }
    return kept;
}

QString withoutJsonEscapes(const QString& text) {
    static const QString named = QStringLiteral("\"\\/bfnrt");
    static const QString meant = QStringLiteral("\"\\/\b\f\n\r\t");
    QString plain;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] != u'\\' || at + 1 == text.size()) {
            plain += text[at];
            continue;
        }
        const QChar kind = text[++at];
        bool isCode = false;
        const auto code = kind == u'u' ? QStringView(text).sliced(at + 1).left(4).toUShort(&isCode, 16) : ushort(0);
        if (isCode)
            at += 4;
        const auto index = named.indexOf(kind);
        if (isCode)
            plain += QChar(code);
        else if (index >= 0)
            plain += meant[index];
        else
            plain += QString(u'\\') + kind;
    }
    return plain;
}

}  // namespace

QString oneLine(const QString& text) {
    auto line = text.startsWith(u'{') || text.startsWith(u'[') ? withoutJsonEscapes(text) : text;
    for (auto& c : line)
        if (c.category() == QChar::Other_Control || c.category() == QChar::Other_Format)
            c = u' ';
    return line.simplified();
}

QString withoutEcho(const QString& text, const QByteArray& sent) {
    auto told = text.left(longestRead);
    for (const auto& prompt : textsSent(sent)) {
        told = withoutRuns(told, prompt.simplified());
        hideLines(told, prompt);
    }
    if (text.size() > longestRead)  // its end may be a piece of an echo that is too short to be known
        told.chop(window);
    const auto cut = text::prefixOfCharacters(told, longest);
    return cut.size() < told.size() ? cut + QChar(mark) : cut;
}

}  // namespace tavrelon::generation::error_text
