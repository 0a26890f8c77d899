#include "input/settling_loop.h"

#include <array>

#include "async/waits.h"
#include "input/text_difference.h"

namespace tavrelon::input {

using namespace std::chrono_literals;

namespace {

/// The pauses before the reads. Input methods commit within the first three; the last ones are for slow machines.
constexpr std::array passes{100ms, 150ms, 200ms, 250ms, 300ms, 350ms, 400ms, 500ms};

/// How much of the text near the caret serves as the last resort, in UTF-16 units to each side.
constexpr qint64 lastResortRadius = 240;

bool isRawLetters(const QString& text) {
    return text::isASCIIOnly(text::trimmed(text));
}

}  // namespace

async::Task<Settling> SettlingLoop::run(TextRequest& request, std::optional<RequestText> candidate) {
    for (const auto wait : passes) {
        const auto outcome = co_await pass(request, candidate, wait);
        if (outcome == Pass::Overtaken)
            co_return Settling::Overtaken;
        if (outcome == Pass::Committed)
            break;
    }
    co_return choose(request, std::move(candidate));
}

async::Task<SettlingLoop::Pass> SettlingLoop::pass(TextRequest& request, std::optional<RequestText>& candidate,
                                                   std::chrono::milliseconds wait) {
    co_await async::ignoringCancellation(async::pause(services_.platform.mainLoop, wait));
    if (!machine_.isCurrentTask(request.id))
        co_return Pass::Overtaken;
    auto found = co_await readAgain(request);
    if (!machine_.isCurrentTask(request.id))
        co_return Pass::Overtaken;
    if (!found || text::isBlank(found->text))
        co_return Pass::Again;
    if (isRawLetters(found->text)) {
        if (!candidate)
            candidate = std::move(found);
        co_return Pass::Again;
    }
    candidate = std::move(found);
    co_return Pass::Committed;
}

async::Task<std::optional<RequestText>> SettlingLoop::readAgain(TextRequest& request) {
    std::optional<AccessibilityTextSnapshot> latest;
    std::optional<QString> fresh;
    if (services_.platform.accessibility.isProcessTrusted()) {
        latest = services_.contextCapturer.fetchFocusedTextSnapshot();
        if (latest)
            request.current = latest;
        if (const auto selected = co_await services_.contextCapturer.selectedText())
            fresh = text::trimmed(*selected);
    }
    if (fresh && !fresh->isEmpty() && (!request.normalizedSelection || request.normalizedSelection->isEmpty())) {
        request.normalizedSelection = fresh;
        request.context.selection = fresh;
    }
    co_return deriveRequestText(latest, fresh ? fresh : request.normalizedSelection, request.initial);
}

Settling SettlingLoop::choose(TextRequest& request, std::optional<RequestText> candidate) {
    const auto settle = [&request](RequestText found) {
        request.settle(std::move(found));
        return Settling::Settled;
    };
    if (candidate && (candidate->isClean || !text::isASCIIOnly(candidate->text)))
        return settle(*std::move(candidate));
    // What an input method made of the keys was not seen in the field, so nothing of it can be removed there.
    const auto unseen = request.imeActive ? std::optional<qint64>(0) : std::nullopt;
    if (request.current && request.imeActive) {
        auto window = caretWindow(request.current->value, request.current->selectedRange, lastResortRadius);
        if (window && !isRawLetters(*window))
            return settle({*std::move(window), unseen});
    }
    if (candidate)
        return settle(*std::move(candidate));
    if (!text::isBlank(request.requestText))
        return settle({request.requestText, unseen});
    return Settling::Empty;
}

}  // namespace tavrelon::input
