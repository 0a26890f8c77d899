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
        if (isLast || !error.isWorthAnotherTry())
            throw;
    } catch (const std::exception&) {
        if (isLast)
            throw;
    }
    co_return std::nullopt;
}

async::Task<RetriedResult> tryInTurn(InputStateMachine& machine, async::MainLoop& loop, InputStateMachine::TaskID id,
                                     GenerationOperation operation) {
    for (int i = 0; i < generationAttempts; ++i) {
        machine.requireCurrent(id);
        if (auto result = co_await attempt(operation, i == generationAttempts - 1))
            co_return RetriedResult{*std::move(result), i};
        co_await async::ignoringCancellation(async::pause(loop, generationRetryDelay * (i + 1)));
    }
    throw async::CancellationError();
}

}  // namespace

async::Task<RetriedResult> generateWithRetry(InputStateMachine& machine, async::MainLoop& loop,
                                             InputStateMachine::TaskID id, std::chrono::seconds deadline,
                                             GenerationOperation operation) {
    try {
        co_return co_await async::raceWithDeadline(loop, deadline, tryInTurn(machine, loop, id, std::move(operation)));
    } catch (const async::DeadlineExceeded&) {
        throw ProcessingError::generationFailed(
            text::LocalizedText(QStringLiteral("No answer within %1 s"), QStringLiteral("%1 秒内没有回答"))
                .arg(QString::number(deadline.count())),
            ProcessingError::Again::Futile);
    }
}

}  // namespace tavrelon::input
