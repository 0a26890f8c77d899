#include "input/text_request_pipeline.h"

#include "generation/processing_error.h"

namespace tavrelon::input {

using generation::ProcessingError;

TextRequestPipeline::TextRequestPipeline(InputStateMachine& machine, const InputServices& services)
    : machine_(machine), services_(services), settlingLoop_(machine, services_) {}

async::Task<void> TextRequestPipeline::processTextRequest(QString inputBuffer,
                                                          std::optional<AccessibilityTextSnapshot> focusedSnapshot,
                                                          QUuid id, TranscriptInserted transcriptInserted) {
    if (!machine_.isCurrentTask(id) || !machine_.ensureAIEnabled() || !machine_.ensureNoPasswordField())
        co_return;
    TextRequest request;
    request.id = id;
    request.inputBuffer = std::move(inputBuffer);
    request.transcriptInserted = transcriptInserted;
    request.initial = machine_.initialTextSnapshot;
    request.current = std::move(focusedSnapshot);
    const auto next = co_await findText(request);
    if (next == Next::EmptyInput || (next == Next::Stage && text::isBlank(request.finalText)))
        endEmpty(id);
    if (next != Next::Stage || text::isBlank(request.finalText))
        co_return;
    try {
        co_await answer(request);
    } catch (const ProcessingError& error) {
        if (error.code() != ProcessingError::Code::emptyInput) {
            machine_.fail(id, QStringLiteral("[StateMachine] Processing error: "), error);
            co_return;
        }
        log(QStringLiteral("[StateMachine] Empty input; stopping without error UI"));
        machine_.resetIfOwned(id);
    }
}

async::Task<void> TextRequestPipeline::answer(TextRequest& request) {
    request.context.inputBuffer = request.finalText;
    auto retried = co_await askModel(request);
    if (!machine_.isCurrentTask(request.id))
        co_return;
    co_await leaveComposition(request);
    if (!machine_.isCurrentTask(request.id))
        co_return;
    const auto placement = co_await write(request, retried.result, retried.retryCount);
    if (!machine_.isCurrentTask(request.id))
        co_return;
    output::ensureWritten(placement);
    co_await machine_.complete(request.id, std::chrono::seconds(2));
}

void TextRequestPipeline::record(const TextRequest& request, persistence::HistoryEntry entry) {
    services_.historyManager.addEntry(std::move(entry));
    if (services_.adaptivePromptLearner && shouldRecordInput(request.finalText, request.imeActive))
        services_.adaptivePromptLearner->recordInput(request.finalText);
}

void TextRequestPipeline::endEmpty(const QUuid& id) {
    if (wholeField() == WholeField::Forbidden) {
        machine_.fail(id, QStringLiteral("[StateMachine] Processing error: "), ProcessingError::unseenInput());
        return;
    }
    log(QStringLiteral("[StateMachine] Empty input detected, skipping processing"));
    machine_.resetIfOwned(id);
}

}  // namespace tavrelon::input
