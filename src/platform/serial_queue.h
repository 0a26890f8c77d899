#pragma once

#include <QString>
#include <functional>
#include <memory>

namespace tavrelon::platform {

/// Runs blocks one after another, in the order of their posting, away from the main thread. Its destruction runs what
/// was posted and returns after the last block, so blocks may refer to the owner of the queue.
class SerialQueue {
 public:
    using Block = std::move_only_function<void()>;

    virtual ~SerialQueue() = default;

    /// Runs `block` later. Any thread, also from a block; returns at once.
    virtual void post(Block block) = 0;
};

/// Makes queues.
class SerialQueues {
 public:
    virtual ~SerialQueues() = default;

    /// `label` is for people who look at the process. Main thread.
    virtual std::unique_ptr<SerialQueue> create(const QString& label) = 0;
};

}  // namespace tavrelon::platform
