#pragma once

#include <QByteArrayView>
#include <QString>

namespace tavrelon::desktop {

/// The text under `key` of an answer of the library; empty when it holds none. Throws `text::JsonError`.
QString voskText(QByteArrayView json, const char* key);

/// Puts together what the library tells of one utterance after the other.
class VoskTranscript {
 public:
    /// The whole text with this unfinished utterance at its end.
    QString with(const QString& utterance) const;

    /// An utterance has ended as this.
    void add(const QString& utterance) { text_ = with(utterance); }
    const QString& text() const { return text_; }

 private:
    QString text_;
};

}  // namespace tavrelon::desktop
