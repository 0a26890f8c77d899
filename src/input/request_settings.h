#pragma once

#include <QString>
#include <optional>

#include "generation/system_prompt.h"
#include "persistence/app_settings.h"
#include "text/characters.h"

// What a request takes from the settings, read afresh at each use.
namespace tavrelon::input {

/// The learnt voice of the user; absent while local learning is off.
inline std::optional<QString> adaptivePromptForRequest(const persistence::AppSettings& settings) {
    return settings.enableLocalLearning ? text::trimmedOrAbsent(settings.adaptiveSystemPrompt) : std::nullopt;
}
inline std::optional<QString> cloneLanguageStyleForRequest(const persistence::AppSettings& settings) {
    return text::trimmedOrAbsent(settings.cloneLanguageStyle);
}
inline std::optional<QString> cloneSystemPromptForRequest(const persistence::AppSettings& settings) {
    return text::trimmedOrAbsent(settings.cloneSystemPrompt);
}
inline generation::UserVoice voiceForRequest(const persistence::AppSettings& settings, std::optional<QString> userStyle,
                                             std::optional<QString> adaptivePrompt) {
    return {std::move(userStyle), cloneLanguageStyleForRequest(settings), cloneSystemPromptForRequest(settings),
            std::move(adaptivePrompt)};
}

}  // namespace tavrelon::input
