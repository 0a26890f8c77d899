#pragma once

#include <optional>

#include "async/task.h"
#include "input/input_state_machine.h"
#include "input/request_text.h"
#include "input/text_request.h"

namespace tavrelon::input {

enum class Settling {
    Settled,    ///< `finalText` and `finalDeleteCount` are set
    Empty,      ///< no text was found
    Overtaken,  ///< another input took over meanwhile
};

/// Gives an input method time to commit what it composes: reads the field again and again, for 2.25 seconds at most,
/// until its new text is no longer the raw letters of a composition.
class SettlingLoop {
 public:
    SettlingLoop(InputStateMachine& machine, const InputServices& services) : machine_(machine), services_(services) {}

    /// Starts with what was found so far and settles the request's text.
    async::Task<Settling> run(TextRequest& request, std::optional<RequestText> candidate);

 private:
    enum class Pass { Committed, Again, Overtaken };
    async::Task<Pass> pass(TextRequest& request, std::optional<RequestText>& candidate, std::chrono::milliseconds wait);
    async::Task<std::optional<RequestText>> readAgain(TextRequest& request);
    static Settling choose(TextRequest& request, std::optional<RequestText> candidate);

    InputStateMachine& machine_;
    const InputServices& services_;
};

}  // namespace tavrelon::input
