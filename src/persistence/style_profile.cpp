#include "persistence/style_profile.h"

#include <QStringList>
#include <algorithm>
#include <array>

#include "text/characters.h"
#include "text/scripts.h"

namespace tavrelon::persistence {

namespace {

constexpr std::array formalMarkers{u"您好", u"敬礼",    u"谢谢",      u"请您",
                                   u"致敬", u"Regards", u"Sincerely", u"Best regards"};
constexpr std::array casualMarkers{u"哈哈", u"嘿", u"嗨", u"lol", u"thx", u"thanks!", u"cheers"};
constexpr std::array listMarkers{u"\n-", u"\n•", u"\n* "};

/// What the samples add up to.
struct Tally {
    qint64 samples = 0;
    qint64 characters = 0;
    qint64 emoji = 0;  ///< scalars
    text::ScriptCounts scripts;
    qint64 formal = 0;  ///< samples, as the next two
    qint64 casual = 0;
    qint64 lists = 0;
};

/// Folding a long sample costs more than all searches in it, so it comes here folded.
bool hasMarker(const QString& foldedSample, const auto& markers) {
    return std::ranges::any_of(markers, [&](const char16_t* marker) {
        return foldedSample.contains(QString::fromUtf16(marker).toCaseFolded());
    });
}

void add(const QString& sample, Tally& tally) {
    ++tally.samples;
    tally.characters += text::characterCount(sample);
    const auto scripts = text::countScripts(sample);
    tally.scripts.cjk += scripts.cjk;
    tally.scripts.latin += scripts.latin;
    text::forEachScalar(sample, [&](char32_t scalar) { tally.emoji += text::isEmoji(scalar) ? 1 : 0; });
    const auto folded = sample.toCaseFolded();
    tally.formal += hasMarker(folded, formalMarkers) ? 1 : 0;
    tally.casual += hasMarker(folded, casualMarkers) ? 1 : 0;
    const bool list =
        std::ranges::any_of(listMarkers, [&](const char16_t* marker) { return sample.contains(QStringView(marker)); });
    tally.lists += list ? 1 : 0;
}

const char* lengthWord(const Tally& tally) {
    const qint64 average = tally.characters / tally.samples;
    if (average < 60)
        return "short";
    return average < 180 ? "medium" : "long";
}

const char* toneWord(const Tally& tally) {
    if (tally.formal == tally.casual)
        return "neutral";
    return tally.formal > tally.casual ? "formal" : "casual";
}

const char* emojiWord(const Tally& tally) {
    if (tally.emoji == 0)
        return "none";
    return tally.emoji > tally.samples ? "frequent" : "some";
}

QString line(const char* subject, QLatin1StringView word) {
    return QStringLiteral("%1: %2.").arg(QLatin1StringView(subject), word);
}

}  // namespace

std::optional<QString> userStyleProfile(const std::vector<HistoryEntry>& newestFirst, qint64 limit) {
    Q_ASSERT(limit >= 0);
    Tally tally;
    for (const auto& entry : newestFirst)
        if (tally.samples < limit && !text::isBlank(entry.inputText))
            add(entry.inputText, tally);
    if (tally.samples == 0)
        return std::nullopt;

    QStringList lines{line("Typical length", QLatin1StringView(lengthWord(tally))),
                      line("Language", text::predominantLanguage(tally.scripts)),
                      line("Tone", QLatin1StringView(toneWord(tally))),
                      line("Emoji", QLatin1StringView(emojiWord(tally)))};
    if (tally.lists > 0)
        lines << QStringLiteral("Formatting: uses bullets for lists.");
    return lines.join(u'\n');
}

}  // namespace tavrelon::persistence
