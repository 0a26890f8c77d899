#pragma once

#include "input/generation_retry.h"
#include "input/input_state_machine.h"

namespace tavrelon::input {

/// Answers what is on the screen at one key press: asks for a reply to the selection, or to the context alone, and
/// pastes it where the caret stands. Main thread.
class AutoReplyFlow {
 public:
    AutoReplyFlow(InputStateMachine& machine, const InputServices& services) : machine_(machine), services_(services) {}

    void startAutoReply();

 private:
    async::Task<void> processAutoReply(QUuid id);
    async::Task<void> reply(const QUuid& id, const capture::CapturedContext& context);
    async::Task<generation::GenerationResult> generateOnce(QString prompt, const capture::CapturedContext& context,
                                                           std::optional<QString> userStyle);

    InputStateMachine& machine_;
    InputServices services_;
};

}  // namespace tavrelon::input
