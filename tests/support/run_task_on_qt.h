#pragma once

#include <functional>
#include <optional>
#include <stdexcept>

#include "async/task_scope.h"
#include "support/run_task.h"
#include "support/waiting.h"

namespace tavrelon::testing {

/// Runs the Qt event loop until something is true. False when it is not within the limit.
inline bool runQtUntil(const std::function<bool()>& isTrue,
                       std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    return eventually(isTrue, limit);
}

/// Runs a task to its end on the Qt event loop and gives its result, or rethrows its error.
template <typename T>
T runTaskOnQt(async::MainLoop& loop, async::Task<T> task) {
    std::optional<std::conditional_t<std::is_void_v<T>, std::monostate, T>> slot;
    std::exception_ptr error;
    async::TaskScope scope(loop);
    scope.spawn(detail::store(std::move(task), slot, error));
    if (!runQtUntil([&] { return slot || error; }))
        throw std::logic_error("the task is stuck: it did not end within the limit");
    if (error)
        std::rethrow_exception(error);
    if constexpr (!std::is_void_v<T>)
        return std::move(*slot);
}

}  // namespace tavrelon::testing
