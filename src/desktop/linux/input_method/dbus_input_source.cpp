#include "desktop/linux/input_method/dbus_input_source.h"

#include <condition_variable>
#include <mutex>

#include "desktop/linux/input_method/input_method_inquiry.h"

namespace tavrelon::desktop {

/// What the asking thread and the main thread tell each other. Shared, since a thread that a framework holds up is
/// left behind at the end rather than waited for.
struct DBusInputSource::Exchange {
    enum class State { Idle, Asked, Asking, Ended };

    std::mutex mutex;
    std::condition_variable changed;
    State state = State::Asking;  // a first time, without having been told to
    bool answer = false;          // the last one
    bool stop = false;

    static void run(const std::shared_ptr<Exchange>& exchange);
};

void DBusInputSource::Exchange::run(const std::shared_ptr<Exchange>& exchange) {
    std::optional<InputMethodInquiry> inquiry(std::in_place);
    std::unique_lock lock(exchange->mutex, std::defer_lock);
    for (;;) {
        const bool composing = inquiry->isComposing();
        lock.lock();
        exchange->answer = composing;
        exchange->state = State::Idle;
        exchange->changed.notify_all();
        exchange->changed.wait(lock, [&] { return exchange->stop || exchange->state == State::Asked; });
        if (exchange->stop)
            break;
        exchange->state = State::Asking;
        lock.unlock();
    }
    inquiry.reset();
    exchange->state = State::Ended;
    exchange->changed.notify_all();
}

DBusInputSource::DBusInputSource(async::MainLoop& loop, std::chrono::milliseconds limit)
    : loop_(loop),
      limit_(limit),
      exchange_(std::make_shared<Exchange>()),
      thread_([exchange = exchange_] { Exchange::run(exchange); }) {}

DBusInputSource::~DBusInputSource() {
    std::unique_lock lock(exchange_->mutex);
    exchange_->stop = true;
    exchange_->changed.notify_all();
    const bool ended = exchange_->changed.wait_for(lock, std::chrono::seconds(1),
                                                   [this] { return exchange_->state == Exchange::State::Ended; });
    lock.unlock();
    if (ended)
        thread_.join();
    else
        thread_.detach();
}

bool DBusInputSource::isInputMethodActive() {
    if (answerOfThisTurn_)
        return *answerOfThisTurn_;
    loop_.post(lifetime_.guard([this] { answerOfThisTurn_.reset(); }));
    const auto deadline = std::chrono::steady_clock::now() + limit_;
    const auto isIdle = [this] { return exchange_->state == Exchange::State::Idle; };
    std::unique_lock lock(exchange_->mutex);
    if (exchange_->changed.wait_until(lock, deadline, isIdle)) {
        exchange_->state = Exchange::State::Asked;
        exchange_->changed.notify_all();
        exchange_->changed.wait_until(lock, deadline, isIdle);
    }
    answerOfThisTurn_ = exchange_->answer;
    return *answerOfThisTurn_;
}

}  // namespace tavrelon::desktop
