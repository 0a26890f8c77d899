#include "async/task_scope.h"

#include <utility>

namespace tavrelon::async {

TaskHandle TaskScope::spawn(Task<void> body) {
    const auto id = nextId_++;
    auto cancellation = Cancellation::create();
    tasks_.emplace(id, run(std::move(body), id));
    loop_.post(lifetime_.guard([this, id, cancellation] { tasks_.at(id).start(cancellation); }));
    return TaskHandle(cancellation);
}

Task<void> TaskScope::run(Task<void> body, std::uint64_t id) {
    try {
        co_await std::move(body);
    } catch (const CancellationError&) {  // an answered request to stop is no failure
    } catch (...) {
        std::terminate();
    }
    // The frame cannot destroy itself while it runs.
    loop_.post(lifetime_.guard([this, id] { tasks_.erase(id); }));
}

}  // namespace tavrelon::async
