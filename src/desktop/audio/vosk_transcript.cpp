#include "desktop/audio/vosk_transcript.h"

#include <QStringList>

#include "text/json.h"
#include "text/scripts.h"

namespace tavrelon::desktop {

namespace {

/// The library puts a space between all words; Chinese is written without.
bool isSpaceBetween(QChar before, QChar after) {
    return !(text::isCJK(before.unicode()) && text::isCJK(after.unicode()));
}

/// What the library says for a noise or a word that it does not know.
bool isWord(QStringView token) {
    return !token.isEmpty() && token != u"[unk]" && token != u"<unk>";
}

}  // namespace

QString voskText(QByteArrayView json, const char* key) {
    const auto document = text::parseJson(json);
    return text::optionalString(document, key).value_or(QString());
}

QString VoskTranscript::with(const QString& utterance) const {
    QString text = text_;
    for (const QStringView token : QStringView(utterance).split(u' ')) {
        if (!isWord(token))
            continue;
        if (!text.isEmpty() && isSpaceBetween(text.back(), token.front()))
            text += u' ';
        text += token;
    }
    return text;
}

}  // namespace tavrelon::desktop
