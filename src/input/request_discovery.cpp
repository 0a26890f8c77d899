// The first half of the text request pipeline: what did the user ask for?
#include "async/waits.h"
#include "input/text_difference.h"
#include "input/text_request_pipeline.h"

namespace tavrelon::input {

namespace {

/// How far around the caret non-ASCII text tells of a user who writes in such a script, in UTF-16 units.
constexpr qint64 scriptRadius = 400;

/// Where only the field tells what was typed, it is read until two readings are the same.
constexpr auto fieldRhythm = std::chrono::milliseconds(40);
constexpr int mostReadings = 8;

bool isMissing(const std::optional<QString>& text) {
    return !text || text->isEmpty();
}

}  // namespace

async::Task<TextRequestPipeline::Next> TextRequestPipeline::findText(TextRequest& request) {
    if (!co_await readInput(request))
        co_return Next::End;
    request.context =
        co_await services_.contextCapturer.captureContext(request.requestText, capture::ScreenshotWish::Include);
    if (!machine_.isCurrentTask(request.id))
        co_return Next::End;
    machine_.expectedScreenshot.reset();
    believeSelection(request);
    testForComposition(request);
    co_return co_await settleText(request);
}

async::Task<bool> TextRequestPipeline::readInput(TextRequest& request) {
    if (!request.current)
        request.current = services_.contextCapturer.fetchFocusedTextSnapshot();
    const bool typed = machine_.activeTrigger() == InputTrigger::text;
    if (typed && request.current && !machine_.wereKeysTold())
        co_await awaitField(request);
    if (!request.current)
        request.current = request.initial;
    if (!machine_.isCurrentTask(request.id))
        co_return false;
    machine_.initialTextSnapshot.reset();
    request.imeActive = services_.platform.inputSource.isInputMethodActive();
    // The one case in which Copy is pressed in the user's application: nothing could be read, and the keys alone are
    // not enough.
    if (typed && !request.current && (text::isBlank(request.inputBuffer) || request.imeActive))
        // To its end even when the request is cancelled: a copy under way would replace what is to be put back.
        request.clipboardSelection = co_await async::shielded(services_.contextCapturer.selectionViaClipboard(
            wholeField() == WholeField::Allowed ? capture::SelectAll::Allowed : capture::SelectAll::Forbidden));
    if (!machine_.isCurrentTask(request.id))
        co_return false;
    request.requestText = chooseRequestText(request);
    co_return true;
}

/// A reading that comes early would lose the end of what was typed, or all of it.
async::Task<void> TextRequestPipeline::awaitField(TextRequest& request) {
    for (int reading = 1; reading < mostReadings; ++reading) {
        co_await async::ignoringCancellation(async::pause(services_.platform.mainLoop, fieldRhythm));
        if (!machine_.isCurrentTask(request.id))
            co_return;
        auto next = services_.contextCapturer.fetchFocusedTextSnapshot();
        if (!next)
            co_return;
        const bool isSettled = next == request.current;
        request.current = std::move(next);
        if (isSettled && deriveRequestText(request.current, std::nullopt, request.initial))
            co_return;
    }
}

/// Not where something may have been typed that nobody saw: all that stood there would be gone with it.
WholeField TextRequestPipeline::wholeField() const {
    const bool typed = machine_.activeTrigger() == InputTrigger::text;
    return typed && !machine_.wereKeysTold() ? WholeField::Forbidden : WholeField::Allowed;
}

QString TextRequestPipeline::chooseRequestText(const TextRequest& request) {
    const bool typed = machine_.activeTrigger() == InputTrigger::text;
    if (typed && !request.current) {
        if (request.clipboardSelection)
            return *request.clipboardSelection;
        if (!text::isBlank(request.inputBuffer))
            log(QStringLiteral("[StateMachine] Using keystroke buffer fallback"));
        return request.inputBuffer;
    }
    if (!typed && request.transcriptInserted == TranscriptInserted::No)
        return request.inputBuffer;
    // A reading that failed or came too early shows no difference. Taking the whole field for the request would then
    // delete all before the caret, although the keys or the transcript tell what was asked.
    const bool foundInField = deriveRequestText(request.current, std::nullopt, request.initial).has_value();
    if (!foundInField && !text::isBlank(request.inputBuffer))
        return request.inputBuffer;
    return deriveInputText(request.initial, request.current, wholeField()).value_or(request.inputBuffer);
}

void TextRequestPipeline::believeSelection(TextRequest& request) {
    auto& selection = request.context.selection;
    if (isMissing(selection))
        if (auto selected = selectedTextOf(request.current))
            selection = std::move(selected);
    if (isMissing(selection) && request.clipboardSelection)
        if (auto copied = text::trimmedOrAbsent(*request.clipboardSelection))
            selection = std::move(copied);
    if (selection)
        request.normalizedSelection = text::trimmed(*selection);
}

void TextRequestPipeline::testForComposition(TextRequest& request) {
    // An input method that has not committed leaves ASCII letters in the field, which would be nonsense to the model.
    if (text::isBlank(request.requestText) || !text::isASCIIOnly(text::trimmed(request.requestText)))
        return;
    // A change that is nothing but an insertion at the caret is what was typed, in whatever script the rest is.
    const auto found = deriveRequestText(request.current, std::nullopt, request.initial);
    std::optional<QString> window;
    if (request.current && !(found && found->isClean))
        window = caretWindow(request.current->value, request.current->selectedRange, scriptRadius);
    request.imeMayBeComposing = request.imeActive || (window && !text::isASCIIOnly(*window));
}

async::Task<TextRequestPipeline::Next> TextRequestPipeline::settleText(TextRequest& request) {
    const bool isSpoken = machine_.activeTrigger() == InputTrigger::voice;
    if (machine_.activeTrigger() == InputTrigger::floatingInput ||
        (isSpoken && request.transcriptInserted == TranscriptInserted::No)) {
        request.settle({request.requestText, std::nullopt});
        co_return Next::Stage;
    }
    auto candidate = deriveRequestText(request.current, request.normalizedSelection, request.initial);
    if (request.imeMayBeComposing && (!candidate || text::isASCIIOnly(candidate->text))) {
        switch (co_await settlingLoop_.run(request, std::move(candidate))) {
            case Settling::Settled:
                co_return Next::Stage;
            case Settling::Empty:
                co_return Next::EmptyInput;
            case Settling::Overtaken:
                co_return Next::End;
        }
    }
    if (candidate) {
        request.settle(std::move(*candidate));
        co_return Next::Stage;
    }
    if (text::isBlank(request.requestText))
        co_return Next::EmptyInput;
    request.settle({request.requestText, std::nullopt});
    co_return Next::Stage;
}

}  // namespace tavrelon::input
