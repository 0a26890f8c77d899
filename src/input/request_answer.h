#pragma once

#include "input/generation_retry.h"
#include "input/text_request.h"

namespace tavrelon::input {

/// The second half of a text request: asks the model, lets its answer take the request's place, and records both. Until
/// the answer is there the field is not touched; a failure after that leaves what was done by then. Main thread.
class RequestAnswer {
 public:
    RequestAnswer(InputStateMachine& machine, const InputServices& services) : machine_(machine), services_(services) {}

    /// Throws what the generator and the writer do, and `CancellationError` when another input took over meanwhile.
    async::Task<void> answer(TextRequest& request);

 private:
    async::Task<RetriedResult> askModel(TextRequest& request);
    async::Task<generation::GenerationResult> generateOnce(const TextRequest& request, std::optional<QString> userStyle,
                                                           std::optional<QString> userVoice);
    async::Task<void> leaveComposition(TextRequest& request);
    async::Task<output::Placement> write(const TextRequest& request, const RetriedResult& answered);
    async::Task<output::Placement> writeImage(const TextRequest& request, platform::PasteboardItem picture,
                                              const scenes::ReplacementStrategy& strategy);
    void record(const TextRequest& request, persistence::HistoryEntry entry);

    InputStateMachine& machine_;
    InputServices services_;
};

}  // namespace tavrelon::input
