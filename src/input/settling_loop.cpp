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

async::Task<void> SettlingLoop::run(TextRequest& request, std::optional<RequestText> candidate) {
    for (const auto wait : passes) {
        co_await async::ignoringCancellation(async::pause(services_.platform.mainLoop, wait));
        machine_.requireCurrent(request.id);
        auto found = co_await readAgain(request);
        machine_.requireCurrent(request.id);
        if (!found || text::isBlank(found->text))
            continue;
        const bool isCommitted = !isRawLetters(found->text);
        if (isCommitted || !candidate)
            candidate = std::move(found);
        if (isCommitted)
            break;
    }
    choose(request, std::move(candidate));
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

void SettlingLoop::choose(TextRequest& request, std::optional<RequestText> candidate) {
    if (candidate && (candidate->isClean || !text::isASCIIOnly(candidate->text))) {
        request.settle(*std::move(candidate));
        return;
    }
    // What an input method made of the keys was not seen in the field, so nothing of it can be removed there.
    const auto unseen = request.imeActive ? std::optional<qint64>(0) : std::nullopt;
    std::optional<QString> window;
    if (request.current && request.imeActive)
        window = caretWindow(request.current->value, request.current->selectedRange, lastResortRadius);
    if (window && !isRawLetters(*window))
        request.settle({*std::move(window), unseen});
    else if (candidate)
        request.settle(*std::move(candidate));
    else if (!text::isBlank(request.requestText))
        request.settle({request.requestText, unseen});
}

}  // namespace tavrelon::input
