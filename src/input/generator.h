#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

#include "async/task.h"
#include "capture/captured_context.h"
#include "generation/generation_result.h"

namespace tavrelon::input {

/// All that an answer depends on.
struct GenerationRequest {
    QString input;
    std::optional<capture::CapturedContext> context;
    std::optional<QString> userStyle;
    std::optional<QString> languageStyle;
    std::optional<QString> cloneSystemPrompt;
    std::optional<QString> userVoice;
    bool enhanceImagePrompts = true;
};

/// What the flows ask for answers. Fails with `generation::ProcessingError` or `async::CancellationError`.
class Generator {
 public:
    virtual ~Generator() = default;
    virtual async::Task<generation::GenerationResult> generate(GenerationRequest request) = 0;

    /// Describes frames of a window, oldest first; never empty.
    virtual async::Task<generation::GenerationResult> generateVideoResult(GenerationRequest request,
                                                                          std::vector<QByteArray> frames) = 0;
};

}  // namespace tavrelon::input
