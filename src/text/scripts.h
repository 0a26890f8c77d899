#pragma once

#include <QStringView>

namespace tavrelon::text {

/// How many Unicode scalars of a text are Chinese characters and how many are ASCII letters. All others count nowhere.
struct ScriptCounts {
    qint64 cjk = 0;
    qint64 latin = 0;
};

constexpr bool isCJK(char32_t scalar) {
    return (scalar >= 0x4E00 && scalar <= 0x9FFF) || (scalar >= 0x3400 && scalar <= 0x4DBF);
}

constexpr bool isASCIILetter(char32_t scalar) {
    return (scalar >= U'A' && scalar <= U'Z') || (scalar >= U'a' && scalar <= U'z');
}

constexpr bool isEmoji(char32_t scalar) {
    return (scalar >= 0x1F300 && scalar <= 0x1FAFF) || (scalar >= 0x2600 && scalar <= 0x27BF);
}

/// Calls `visit` with each Unicode scalar of the text; an unpaired surrogate comes as U+FFFD.
template <typename Visit>
void forEachScalar(QStringView text, Visit visit) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool paired = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (paired) {
            visit(QChar::surrogateToUcs4(text[i], text[i + 1]));
            ++i;
        } else {
            visit(text[i].isSurrogate() ? char32_t{QChar::ReplacementCharacter} : char32_t{text[i].unicode()});
        }
    }
}

inline ScriptCounts countScripts(QStringView text) {
    ScriptCounts counts;
    forEachScalar(text, [&](char32_t scalar) {
        counts.cjk += isCJK(scalar) ? 1 : 0;
        counts.latin += isASCIILetter(scalar) ? 1 : 0;
    });
    return counts;
}

/// "zh", "en" or, with no clear majority, "mixed". A Chinese character weighs as much as two letters.
inline QLatin1StringView predominantLanguage(ScriptCounts counts) {
    if (counts.cjk > 2 * counts.latin)
        return QLatin1StringView("zh");
    return QLatin1StringView(2 * counts.cjk < counts.latin ? "en" : "mixed");
}

}  // namespace tavrelon::text
