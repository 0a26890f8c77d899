#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <thread>

#include "async/lifetime.h"
#include "async/main_loop.h"
#include "platform/input_source.h"

namespace tavrelon::desktop {

/// Asks Fcitx 5 on the session bus, or else the IBus daemon on its own bus, whether the input method in use composes.
///
/// Main thread. The questions are put by a thread of its own, since even to connect may block; one that is not answered
/// within the limit gets the answer of the last one, since an input method that looks up a word is busy for a moment; a
/// framework that says nothing for half a second counts as none. Connecting and a first question begin at once, so that
/// there is an answer from the start. Nothing is started by asking.
class DBusInputSource : public platform::InputSource {
 public:
    static constexpr std::chrono::milliseconds answerLimit{50};

    explicit DBusInputSource(async::MainLoop& loop, std::chrono::milliseconds limit = answerLimit);
    /// Leaves the thread behind if a framework holds it up for a second.
    ~DBusInputSource() override;

    /// Asked once in a turn of the main loop; later calls in the same turn get the same answer.
    bool isInputMethodActive() override;

 private:
    struct Exchange;

    async::MainLoop& loop_;
    std::chrono::milliseconds limit_;
    std::shared_ptr<Exchange> exchange_;
    std::thread thread_;
    std::optional<bool> answerOfThisTurn_;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::desktop
