#pragma once

#include <QString>
#include <optional>
#include <vector>

/// The texts of the learner: what it keeps of an input, what it asks a model, what it takes of the answer. Pure.
namespace tavrelon::learning::adaptive_prompt {

/// Characters of a sample; a longer one is cut and ends with "...".
inline constexpr qsizetype maxSampleLength = 280;

/// Characters of a learned prompt; a longer one is cut.
inline constexpr qsizetype maxPromptLength = 600;

/// The input on one line; absent when fewer than two characters are left of it.
std::optional<QString> cleanedSample(const QString& input);

QString systemPrompt();

/// The samples, numbered, between a head line and a closing line.
QString userPrompt(const std::vector<QString>& samples);

/// The prompt that a model wrote, on one line and without the quotation marks around it; absent when the reply is
/// blank. A reply of nothing but quotation marks is an empty prompt.
std::optional<QString> cleanedPrompt(const QString& reply);

}  // namespace tavrelon::learning::adaptive_prompt
