#include "input/text_request_pipeline.h"

#include "generation/processing_error.h"

namespace tavrelon::input {

using generation::ProcessingError;

async::Task<void> TextRequestPipeline::processTextRequest(QString inputBuffer,
                                                          std::optional<AccessibilityTextSnapshot> focusedSnapshot,
                                                          QUuid id, TranscriptInserted transcriptInserted) {
    machine_.requireCurrent(id);
    if (!machine_.ensureAIEnabled() || !machine_.ensureNoPasswordField())
        co_return;
    TextRequest request;
    request.id = id;
    request.trigger = machine_.activeTrigger();
    request.inputBuffer = std::move(inputBuffer);
    request.transcriptInserted = transcriptInserted;
    request.initial = machine_.initialTextSnapshot;
    request.current = std::move(focusedSnapshot);
    co_await discovery_.findText(request);
    if (text::isBlank(request.finalText)) {
        endEmpty(request);
        co_return;
    }
    try {
        co_await answer_.answer(request);
    } catch (const ProcessingError& error) {
        if (error.code() != ProcessingError::Code::emptyInput) {
            machine_.fail(id, QStringLiteral("[StateMachine] Processing error: "), error);
            co_return;
        }
        services_.platform.log.line(QStringLiteral("[StateMachine] Empty input; stopping without error UI"));
        machine_.resetIfOwned(id);
    }
}

void TextRequestPipeline::endEmpty(const TextRequest& request) {
    if (discovery_.wholeField(request) == WholeField::Forbidden) {
        machine_.fail(request.id, QStringLiteral("[StateMachine] Processing error: "), ProcessingError::unseenInput());
        return;
    }
    services_.platform.log.line(QStringLiteral("[StateMachine] Empty input detected, skipping processing"));
    machine_.resetIfOwned(request.id);
}

}  // namespace tavrelon::input
