#include "async/cancellation.h"

#include <utility>

namespace tavrelon::async {

Cancellation::Registration& Cancellation::Registration::operator=(Registration&& other) noexcept {
    if (this != &other) {
        reset();
        owner_ = std::move(other.owner_);
        id_ = other.id_;
    }
    return *this;
}

void Cancellation::Registration::reset() {
    if (auto owner = std::exchange(owner_, {}).lock())
        owner->blocks_.erase(id_);
}

std::shared_ptr<Cancellation> Cancellation::linkedTo(const std::shared_ptr<Cancellation>& parent) {
    auto child = create();
    if (!parent)
        return child;
    if (parent->requested())
        child->requested_ = true;
    else
        child->parent_ = parent->onRequest([weak = std::weak_ptr(child)] {
            if (auto self = weak.lock())
                self->request();
        });
    return child;
}

void Cancellation::request() {
    if (std::exchange(requested_, true))
        return;
    auto self = shared_from_this();  // a block may drop the last other reference
    while (!blocks_.empty()) {
        auto block = std::move(blocks_.begin()->second);
        blocks_.erase(blocks_.begin());
        block();
    }
}

Cancellation::Registration Cancellation::onRequest(std::move_only_function<void()> block) {
    if (requested_)
        return {};
    const auto id = nextId_++;
    blocks_.emplace(id, std::move(block));
    return {weak_from_this(), id};
}

}  // namespace tavrelon::async
