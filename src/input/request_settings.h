#pragma once

#include <QString>
#include <optional>

#include "generation/system_prompt.h"
#include "persistence/taught.h"
#include "text/characters.h"

// What a request takes from the settings, read afresh at each use.
namespace tavrelon::input {

/// What was taught for another provider goes nowhere.
inline std::optional<QString> taughtText(const persistence::AppSettings& settings, persistence::Taught what,
                                         const QString& taught) {
    return persistence::isSetAside(settings, what) ? std::nullopt : text::trimmedOrAbsent(taught);
}

/// The learnt voice of the user; absent while local learning is off.
inline std::optional<QString> adaptivePromptForRequest(const persistence::AppSettings& settings) {
    return settings.enableLocalLearning
               ? taughtText(settings, persistence::Taught::AdaptivePrompt, settings.adaptiveSystemPrompt)
               : std::nullopt;
}
inline std::optional<QString> cloneLanguageStyleForRequest(const persistence::AppSettings& settings) {
    return taughtText(settings, persistence::Taught::CloneProfile, settings.cloneLanguageStyle);
}
inline std::optional<QString> cloneSystemPromptForRequest(const persistence::AppSettings& settings) {
    return taughtText(settings, persistence::Taught::CloneProfile, settings.cloneSystemPrompt);
}
inline generation::UserVoice voiceForRequest(const persistence::AppSettings& settings, std::optional<QString> userStyle,
                                             std::optional<QString> adaptivePrompt) {
    return {std::move(userStyle), cloneLanguageStyleForRequest(settings), cloneSystemPromptForRequest(settings),
            std::move(adaptivePrompt)};
}

}  // namespace tavrelon::input
