#pragma once

#include "input/request_answer.h"
#include "input/request_discovery.h"

namespace tavrelon::input {

/// The body of the processing task for typed, spoken and prompt box requests: finds out what was asked and answers it.
/// Main thread.
class TextRequestPipeline {
 public:
    static inline const auto failureLog = QStringLiteral("[StateMachine] Error processing: ");

    TextRequestPipeline(InputStateMachine& machine, const InputServices& services)
        : machine_(machine), services_(services), discovery_(machine, services), answer_(machine, services) {}

    async::Task<void> processTextRequest(QString inputBuffer, std::optional<AccessibilityTextSnapshot> focusedSnapshot,
                                         QUuid id, TranscriptInserted transcriptInserted);

 private:
    void endEmpty(const TextRequest& request);

    InputStateMachine& machine_;
    InputServices services_;
    RequestDiscovery discovery_;
    RequestAnswer answer_;
};

}  // namespace tavrelon::input
