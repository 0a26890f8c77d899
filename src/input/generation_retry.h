#pragma once

#include <functional>

#include "async/task.h"
#include "input/input_state_machine.h"

namespace tavrelon::input {

/// A result and how many failed attempts came before it.
struct RetriedResult {
    generation::GenerationResult result;
    qint64 retryCount = 0;
};

using GenerationOperation = std::function<async::Task<generation::GenerationResult>()>;

/// How often a request is tried, and the pause after the first failure; the second pause is twice as long. Nothing has
/// touched the field before an answer is there, so trying again is safe.
inline constexpr int generationAttempts = 3;
inline constexpr std::chrono::milliseconds generationRetryDelay{350};

/// Runs `operation` until it succeeds, `generationAttempts` times at most and no longer than `deadline` in all. What
/// would fail again in the same way is not tried again. Throws the last error, or `CancellationError` when `id` was
/// overtaken.
async::Task<RetriedResult> generateWithRetry(InputStateMachine& machine, async::MainLoop& loop,
                                             InputStateMachine::TaskID id, std::chrono::seconds deadline,
                                             GenerationOperation operation);

}  // namespace tavrelon::input
