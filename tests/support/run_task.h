#pragma once

#include <gtest/gtest.h>

#include <optional>

#include "async/task_scope.h"
#include "support/virtual_main_loop.h"

namespace tavrelon::testing {

namespace detail {
template <typename T, typename Slot>
async::Task<void> store(async::Task<T> task, Slot& slot, std::exception_ptr& error) {
    try {
        if constexpr (std::is_void_v<T>) {
            co_await std::move(task);
            slot.emplace();
        } else {
            slot.emplace(co_await std::move(task));
        }
    } catch (...) {
        error = std::current_exception();
    }
}
}  // namespace detail

/// Runs a task to its end on virtual time and gives its result, or rethrows its error.
template <typename T>
T runTask(VirtualMainLoop& loop, async::Task<T> task) {
    std::optional<std::conditional_t<std::is_void_v<T>, std::monostate, T>> slot;
    std::exception_ptr error;
    async::TaskScope scope(loop);
    scope.spawn(detail::store(std::move(task), slot, error));
    loop.runToEnd();
    if (error)
        std::rethrow_exception(error);
    if (!slot)
        throw std::logic_error("the task is stuck: it waits for something that never comes");
    if constexpr (!std::is_void_v<T>)
        return std::move(*slot);
}

}  // namespace tavrelon::testing
