#pragma once

#include <optional>

#include "async/task.h"
#include "input/input_state_machine.h"
#include "input/request_text.h"
#include "input/text_request.h"

namespace tavrelon::input {

/// Gives an input method time to commit what it composes: reads the field again and again, for 2.25 seconds at most,
/// until its new text is no longer the raw letters of a composition.
class SettlingLoop {
 public:
    SettlingLoop(InputStateMachine& machine, const InputServices& services) : machine_(machine), services_(services) {}

    /// Starts with what was found so far and settles the request's text, unless none is found. Throws
    /// `CancellationError` when another input took over meanwhile.
    async::Task<void> run(TextRequest& request, std::optional<RequestText> candidate);

 private:
    async::Task<std::optional<RequestText>> readAgain(TextRequest& request);
    static void choose(TextRequest& request, std::optional<RequestText> candidate);

    InputStateMachine& machine_;
    InputServices services_;
};

}  // namespace tavrelon::input
