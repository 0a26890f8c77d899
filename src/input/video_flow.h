#pragma once

#include "input/generation_retry.h"
#include "input/input_state_machine.h"
#include "input/request_text.h"

namespace tavrelon::input {

/// Records frames of the focused window between two presses and lets a vision model describe them; what was typed
/// meanwhile is the prompt. Main thread.
class VideoFlow {
 public:
    VideoFlow(InputStateMachine& machine, const InputServices& services) : machine_(machine), services_(services) {}

    void startVideoInput();
    void stopVideoInput();

 private:
    async::Task<void> process(QUuid id);
    async::Task<void> describe(const RequestText& request, const std::vector<QByteArray>& frames, const QUuid& id);

    InputStateMachine& machine_;
    InputServices services_;
};

}  // namespace tavrelon::input
