#include "async/main_loop.h"

namespace tavrelon::async {

Timer& Timer::operator=(Timer&& other) noexcept {
    if (this != &other) {
        reset();
        cancel_ = std::exchange(other.cancel_, nullptr);
    }
    return *this;
}

void Timer::reset() {
    if (auto cancel = std::exchange(cancel_, nullptr))
        cancel();
}

}  // namespace tavrelon::async
