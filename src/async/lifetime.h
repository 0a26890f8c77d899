#pragma once

#include <memory>
#include <utility>

namespace tavrelon::async {

/// Lets blocks that outlive a call refer to their owner weakly: a guarded block does nothing once the owner is gone.
/// Declare it last among the owner's fields, so that it dies first. Main thread.
class Lifetime {
 public:
    template <typename Block>
    auto guard(Block block) const {
        return [alive = std::weak_ptr<const bool>(token_), block = std::move(block)](auto&&... arguments) mutable {
            if (alive.lock())
                block(std::forward<decltype(arguments)>(arguments)...);
        };
    }

 private:
    std::shared_ptr<const bool> token_ = std::make_shared<const bool>(true);
};

}  // namespace tavrelon::async
