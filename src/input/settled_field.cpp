#include "input/settled_field.h"

#include "async/waits.h"

namespace tavrelon::input {

namespace {

constexpr auto rhythm = std::chrono::milliseconds(40);
constexpr int mostReadings = 8;

}  // namespace

async::Task<capture::AccessibilityTextSnapshot> settledField(InputStateMachine& machine, const InputServices& services,
                                                             const TextRequest& request,
                                                             capture::AccessibilityTextSnapshot first) {
    auto last = std::move(first);
    for (int reading = 1; reading < mostReadings; ++reading) {
        co_await async::ignoringCancellation(async::pause(services.platform.mainLoop, rhythm));
        machine.requireCurrent(request.id);
        auto next = services.contextCapturer.fetchFocusedTextSnapshot();
        if (!next)
            break;
        const bool isSettled = next == last;
        last = *std::move(next);
        if (isSettled && deriveRequestText(last, std::nullopt, request.initial))
            break;
    }
    co_return last;
}

}  // namespace tavrelon::input
