#include "input/request_discovery.h"

#include "async/waits.h"
#include "generation/processing_error.h"
#include "input/settled_field.h"
#include "input/text_difference.h"

namespace tavrelon::input {

namespace {

/// How far around the caret non-ASCII text tells of a user who writes in such a script, in UTF-16 units.
constexpr qint64 scriptRadius = 400;

bool isMissing(const std::optional<QString>& text) {
    return !text || text->isEmpty();
}

}  // namespace

async::Task<void> RequestDiscovery::findText(TextRequest& request) {
    co_await readInput(request);
    request.context =
        co_await services_.contextCapturer.captureContext(request.requestText, capture::ScreenshotWish::Include);
    machine_.requireCurrent(request.id);
    machine_.expectedScreenshot.reset();
    believeSelection(request);
    testForComposition(request);
    co_await settleText(request);
}

async::Task<void> RequestDiscovery::readInput(TextRequest& request) {
    if (!request.current)
        request.current = services_.contextCapturer.fetchFocusedTextSnapshot();
    if (request.isTyped() && request.current && !machine_.wereKeysTold())
        request.current = co_await settledField(machine_, services_, request, *request.current);
    if (!request.current)
        request.current = request.initial;
    machine_.requireCurrent(request.id);
    machine_.initialTextSnapshot.reset();
    request.imeActive = services_.platform.inputSource.isInputMethodActive();
    // The one case in which Copy is pressed in the user's application: nothing could be read, and the keys alone are
    // not enough.
    if (request.isTyped() && !request.current && (text::isBlank(request.inputBuffer) || request.imeActive))
        // To its end even when the request is cancelled: a copy under way would replace what is to be put back.
        request.clipboardSelection = co_await async::shielded(services_.contextCapturer.selectionViaClipboard(
            wholeField(request) == WholeField::Allowed ? capture::SelectAll::Allowed : capture::SelectAll::Forbidden));
    machine_.requireCurrent(request.id);
    if (tookMoreThanTheKeys(request)) {
        services_.platform.keyPoster.press(keyRight, keys::noModifiers);  // or the next key would replace it all
        throw generation::ProcessingError::unseenInput();
    }
    request.requestText = chooseRequestText(request);
}

/// Whether the copy has what stood in the field before: an input method makes no more characters than it had keys.
bool RequestDiscovery::tookMoreThanTheKeys(const TextRequest& request) {
    return request.clipboardSelection && !text::isBlank(request.inputBuffer) &&
           text::characterCount(*request.clipboardSelection) > text::characterCount(request.inputBuffer);
}

WholeField RequestDiscovery::wholeField(const TextRequest& request) const {
    return request.isTyped() && !machine_.wereKeysTold() ? WholeField::Forbidden : WholeField::Allowed;
}

QString RequestDiscovery::chooseRequestText(const TextRequest& request) const {
    if (request.isTyped() && !request.current) {
        if (request.clipboardSelection)
            return *request.clipboardSelection;
        if (!text::isBlank(request.inputBuffer))
            services_.platform.log.line(QStringLiteral("[StateMachine] Using keystroke buffer fallback"));
        return request.inputBuffer;
    }
    if (request.isOutsideField())
        return request.inputBuffer;
    // A reading that failed or came too early shows no difference. Taking the whole field for the request would then
    // delete all before the caret, although the keys or the transcript tell what was asked.
    const bool foundInField = deriveRequestText(request.current, std::nullopt, request.initial).has_value();
    if (!foundInField && !text::isBlank(request.inputBuffer))
        return request.inputBuffer;
    return deriveInputText(request.initial, request.current, wholeField(request)).value_or(request.inputBuffer);
}

void RequestDiscovery::believeSelection(TextRequest& request) {
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

void RequestDiscovery::testForComposition(TextRequest& request) {
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

async::Task<void> RequestDiscovery::settleText(TextRequest& request) {
    auto candidate = request.isOutsideField()
                         ? std::nullopt
                         : deriveRequestText(request.current, request.normalizedSelection, request.initial);
    const bool mayBeComposing = request.imeMayBeComposing && !request.isOutsideField();
    if (mayBeComposing && (!candidate || text::isASCIIOnly(candidate->text)))
        co_await settlingLoop_.run(request, std::move(candidate));
    else
        request.settle(std::move(candidate).value_or(RequestText{request.requestText, std::nullopt}));
}

}  // namespace tavrelon::input
