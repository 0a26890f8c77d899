#include "input/generation_retry.h"

#include "async/waits.h"
#include "generation/processing_error.h"

namespace tavrelon::input {

using generation::ProcessingError;

namespace {

/// One attempt: its result, or nothing when the failure is worth another try. What is not is thrown.
async::Task<std::optional<generation::GenerationResult>> attempt(const GenerationOperation& operation, bool isLast) {
    try {
        co_return co_await operation();
    } catch (const async::CancellationError&) {
        throw;
    } catch (const ProcessingError& error) {
        if (isLast || error.code() != ProcessingError::Code::generationFailed)
            throw;
    } catch (const std::exception&) {
        if (isLast)
            throw;
    }
    co_return std::nullopt;
}

}  // namespace

async::Task<RetriedResult> generateWithRetry(InputStateMachine& machine, async::MainLoop& loop,
                                             InputStateMachine::TaskID id, int maxAttempts,
                                             std::chrono::nanoseconds baseDelay, GenerationOperation operation) {
    for (int i = 0; i < maxAttempts; ++i) {
        if (!machine.isCurrentTask(id))
            throw async::CancellationError();
        if (auto result = co_await attempt(operation, i == maxAttempts - 1))
            co_return RetriedResult{*std::move(result), i};
        co_await async::ignoringCancellation(async::pause(loop, baseDelay * (i + 1)));
    }
    throw async::CancellationError();
}

}  // namespace tavrelon::input
