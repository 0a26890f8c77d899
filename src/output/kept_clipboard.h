#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "async/task_scope.h"
#include "platform/pasteboard.h"

namespace tavrelon::output {

/// The user's clipboard while it holds what is to be pasted. Main thread.
///
/// It is given back with all its types once the program in front has fetched ours, and only then: one that never did
/// may still do so, and the user's earlier content would land in the place of the answer. Nor is it given back once
/// somebody else has put something there.
class KeptClipboard {
 public:
    KeptClipboard(async::MainLoop& loop, platform::Pasteboard& pasteboard)
        : loop_(loop), pasteboard_(pasteboard), tasks_(loop) {}

    /// Call before ours is put there. Takes what is on it, in the bounds of a reading; what cannot be read is not given
    /// back. Ours of a write just before is not taken for the user's.
    async::Task<void> keep();

    /// Call after the paste was pressed. Without a `keep` before it nothing happens.
    void giveBackOncePasted();

    /// Ours stays on it.
    void forget() { kept_.reset(); }

 private:
    async::Task<void> watch(std::uint64_t write);

    async::MainLoop& loop_;
    platform::Pasteboard& pasteboard_;
    std::optional<std::vector<platform::PasteboardItem>> kept_;
    std::int64_t countOfOurs_ = 0;  ///< the change count with ours on it
    std::uint64_t write_ = 0;       ///< which write is watched; another number ends the watching
    async::TaskScope tasks_;
};

}  // namespace tavrelon::output
