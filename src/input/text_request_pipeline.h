#pragma once

#include <optional>

#include "async/task.h"
#include "input/generation_retry.h"
#include "input/input_state_machine.h"
#include "input/request_text.h"
#include "input/settling_loop.h"
#include "input/text_request.h"

namespace tavrelon::input {

/// The body of the processing task for typed, spoken and prompt box requests: finds out what was asked, asks the model,
/// puts the answer in its place, and records the request. Main thread.
///
/// Until the answer is there the field is not touched; a failure after that leaves what was done by then.
class TextRequestPipeline {
 public:
    static inline const auto failureLog = QStringLiteral("[StateMachine] Error processing: ");

    TextRequestPipeline(InputStateMachine& machine, const InputServices& services);

    async::Task<void> processTextRequest(QString inputBuffer, std::optional<AccessibilityTextSnapshot> focusedSnapshot,
                                         QUuid id, TranscriptInserted transcriptInserted);

 private:
    /// What comes after a stage.
    enum class Next { Stage, End, EmptyInput };

    async::Task<Next> findText(TextRequest& request);
    async::Task<bool> readInput(TextRequest& request);
    async::Task<void> awaitField(TextRequest& request);
    WholeField wholeField() const;
    QString chooseRequestText(const TextRequest& request);
    void believeSelection(TextRequest& request);
    void testForComposition(TextRequest& request);
    async::Task<Next> settleText(TextRequest& request);

    async::Task<void> answer(TextRequest& request);
    async::Task<RetriedResult> askModel(TextRequest& request);
    async::Task<generation::GenerationResult> generateOnce(const TextRequest& request, std::optional<QString> userStyle,
                                                           std::optional<QString> userVoice);
    async::Task<void> leaveComposition(TextRequest& request);
    std::optional<qint64> effectiveDeleteCount(const TextRequest& request) const;
    async::Task<output::Placement> write(const TextRequest& request, const generation::GenerationResult& result,
                                         qint64 retryCount);
    async::Task<output::Placement> writeImage(const TextRequest& request, platform::PasteboardItem picture,
                                              const scenes::ReplacementStrategy& strategy);
    void record(const TextRequest& request, persistence::HistoryEntry entry);

    void endEmpty(const QUuid& id);
    void log(const QString& line) { services_.platform.log.line(line); }

    InputStateMachine& machine_;
    InputServices services_;
    SettlingLoop settlingLoop_;
};

}  // namespace tavrelon::input
