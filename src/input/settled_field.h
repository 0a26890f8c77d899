#pragma once

#include "async/task.h"
#include "input/input_state_machine.h"
#include "input/text_request.h"

namespace tavrelon::input {

/// Reads the field again and again, for 280 ms at most, until two readings are the same and show what was typed: one
/// that comes early would miss the end of that, or all of it. Starts with `first` and gives what was read last. Throws
/// `CancellationError` when another input took over meanwhile. Main thread.
async::Task<capture::AccessibilityTextSnapshot> settledField(InputStateMachine& machine, const InputServices& services,
                                                             const TextRequest& request,
                                                             capture::AccessibilityTextSnapshot first);

}  // namespace tavrelon::input
