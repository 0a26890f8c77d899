#pragma once

#include <QString>

namespace tavrelon::generation {

/// The request without the words that only ask for a picture ("please draw a", "帮我画一张"). A prompt without Chinese
/// characters comes out in lower case and without punctuation. Never empty unless the text is.
QString cleanImagePrompt(const QString& text);

/// The trimmed prompt with a demand for a decent picture behind it, unless it speaks of that already.
QString sanitizeImagePrompt(const QString& text);

}  // namespace tavrelon::generation
