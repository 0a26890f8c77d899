#pragma once

#include "desktop/documents/rtf_tokenizer.h"

#include <QStringView>

/// What the control words of RTF mean for the plain text.
namespace tavrelon::desktop::rtf_words {

/// Whether the word makes its group something else than text of the document.
bool isSkippedDestination(QByteArrayView word);

/// The text that a word stands for; absent when it stands for none.
std::optional<QStringView> textOf(QByteArrayView word);

/// The code page that a word of the document's head sets; absent for every other word.
std::optional<int> documentCodePage(const RtfToken& token);

}  // namespace tavrelon::desktop::rtf_words
