#pragma once

#include <QString>

namespace tavrelon::learning {

/// How to write as a given person does.
struct CloneProfile {
    QString systemPrompt;
    QString languageStyle;  ///< empty where the model named none
    QString source{};       ///< who made it, for the user to read

    bool operator==(const CloneProfile&) const = default;
};

/// What a model is told before the samples.
QString cloneProfilePrompt();

/// The profile in a model's reply, which may be wrapped in other words. Throws `invalidResponse` when it holds no
/// object, `missingSystemPrompt` when the object holds no prompt.
CloneProfile parseCloneProfile(const QString& reply);

}  // namespace tavrelon::learning
