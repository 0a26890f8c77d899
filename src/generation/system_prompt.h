#pragma once

#include <QStringList>
#include <optional>

#include "capture/captured_context.h"
#include "scenes/scene_router.h"

namespace tavrelon::generation {

/// What is known of how the user writes; each part is optional.
struct UserVoice {
    std::optional<QString> userStyle{};          ///< summary of the history
    std::optional<QString> languageStyle{};      ///< of the clone profile
    std::optional<QString> cloneSystemPrompt{};  ///< of the clone profile
    std::optional<QString> adaptivePrompt{};     ///< learnt from what the user typed
};

/// The system prompt: who the assistant is, then the user's voice, then the scene and the form it asks for.
QString composeSystemPrompt(const std::optional<scenes::SceneCandidate>& candidate, const UserVoice& voice);

/// One line for each demand of the contract.
QStringList contractLines(const scenes::OutputContract& contract);

/// What the user is looking at, for the user message; absent when there is nothing to tell. A selection that is the
/// request itself is left out. Other programs chose these texts: names fill one line, and a line of the selection that
/// would pass for another label is quoted, as it is in the input.
std::optional<QString> contextLines(const std::optional<capture::CapturedContext>& context, const QString& input);

/// The trimmed input, with the context under it if there is any.
QString composeUserMessage(const std::optional<capture::CapturedContext>& context, const QString& trimmedInput);

}  // namespace tavrelon::generation
