#pragma once

#include <QByteArrayView>
#include <cstdint>
#include <optional>

namespace tavrelon::desktop {

/// One piece of an RTF document.
struct RtfToken {
    enum class Kind : std::uint8_t {
        GroupStart,
        GroupEnd,
        Word,    ///< a control word, such as \par
        Symbol,  ///< a control symbol, such as \~
        Byte,    ///< a byte of text, as it stands or written as \'hh
        End,
    };

    Kind kind = Kind::End;
    QByteArrayView word = {};           ///< of a control word
    std::optional<int> parameter = {};  ///< of a control word
    char byte = 0;                      ///< of a control symbol or a byte
};

/// Cuts an RTF document into its pieces. Line ends that mean nothing and the raw data behind \bin are left out. Every
/// document has an end, however faulty it is.
class RtfTokenizer {
 public:
    /// The bytes outlive the tokenizer and the words that it gives.
    explicit RtfTokenizer(QByteArrayView bytes) : bytes_(bytes) {}

    RtfToken next();

 private:
    RtfToken control();
    RtfToken controlWord();
    std::optional<int> parameter();
    RtfToken hexByte();
    bool atEnd() const { return position_ >= bytes_.size(); }

    QByteArrayView bytes_;
    qsizetype position_ = 0;
};

}  // namespace tavrelon::desktop
