#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace tavrelon::generation {

/// Whether the trimmed text asks for a picture. Word lists only, no model; false alarms are part of the rules ("Huawei"
/// begins like the pinyin for "draw").
bool isImageRequest(const QString& text);

/// "zh", "en" or "mixed"; absent for a text without Chinese characters and ASCII letters.
std::optional<QString> detectPromptLanguage(const QString& text);

/// The lower-cased text cut at everything that is neither a letter nor a digit, without empty pieces.
QStringList wordTokens(const QString& text);

}  // namespace tavrelon::generation
