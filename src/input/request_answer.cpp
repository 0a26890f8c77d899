#include "input/request_answer.h"

#include "async/waits.h"
#include "input/history_record.h"
#include "input/request_settings.h"
#include "input/settled_field.h"

namespace tavrelon::input {

using Method = scenes::ReplacementStrategy::Method;

namespace {

/// How often a field is looked at for a word that was given up: some programs show it there and tell late that it went,
/// others never had it there.
constexpr int mostLooks = 8;
constexpr auto betweenLooks = std::chrono::milliseconds(40);

}  // namespace

async::Task<void> RequestAnswer::answer(TextRequest& request) {
    request.context.inputBuffer = request.finalText;
    const auto answered = co_await askModel(request);
    machine_.requireCurrent(request.id);
    co_await leaveComposition(request);
    machine_.requireCurrent(request.id);
    const auto placement = co_await write(request, answered);
    machine_.requireCurrent(request.id);
    output::ensureWritten(placement);
    co_await machine_.complete(request.id, std::chrono::seconds(2));
}

async::Task<RetriedResult> RequestAnswer::askModel(TextRequest& request) {
    const auto& settings = services_.storageManager.settings();
    auto userVoice = adaptivePromptForRequest(settings);
    std::optional<QString> userStyle;
    if (settings.enableLocalLearning && !userVoice)  // the two never go together
        userStyle = services_.historyManager.userStyleProfile(std::max<qint64>(settings.maxHistoryEntries, 0));
    co_return co_await generateWithRetry(
        machine_, services_.platform.mainLoop, request.id, services_.generator.deadline(),
        [this, &request, userStyle, userVoice] { return generateOnce(request, userStyle, userVoice); });
}

async::Task<generation::GenerationResult> RequestAnswer::generateOnce(const TextRequest& request,
                                                                      std::optional<QString> userStyle,
                                                                      std::optional<QString> userVoice) {
    const auto& settings = services_.storageManager.settings();
    if (userVoice && !adaptivePromptForRequest(settings))
        userVoice.reset();  // the provider was changed between two attempts
    co_return co_await services_.generator.generate(
        {.input = request.finalText,
         .context = request.context,
         .voice = voiceForRequest(settings, std::move(userStyle), std::move(userVoice)),
         .enhanceImagePrompts = settings.enableImagePromptEnhancement,
         .mayDraw = settings.picturesByRequest});
}

async::Task<void> RequestAnswer::leaveComposition(TextRequest& request) {
    // A half-composed word would take the Backspaces for itself. It stands in the fields of some programs and not in
    // those of others, so what is to be removed is counted once it is gone; where that cannot be read it stays.
    if (!request.isTyped() || !request.initial || !services_.platform.keyPoster.isCompositionOpen())
        co_return;
    const auto composed = services_.contextCapturer.fetchFocusedTextSnapshot();
    co_await services_.outputWriter.cancelComposition();
    machine_.requireCurrent(request.id);
    auto latest = services_.contextCapturer.fetchFocusedTextSnapshot();
    for (int look = 1; look < mostLooks && latest && composed && latest->value == composed->value; ++look) {
        co_await async::pause(services_.platform.mainLoop, betweenLooks);
        machine_.requireCurrent(request.id);
        latest = services_.contextCapturer.fetchFocusedTextSnapshot();
    }
    if (!latest)
        co_return;
    latest = co_await settledField(machine_, services_, request, *std::move(latest));
    const auto left = deriveRequestText(latest, std::nullopt, request.initial);
    request.finalDeleteCount = left ? left->deleteCount.value_or(0) : 0;
    request.standing = left ? output::StandingText{left->text, left->place} : output::StandingText();
}

async::Task<output::Placement> RequestAnswer::write(const TextRequest& request, const RetriedResult& answered) {
    const auto& result = answered.result;
    const auto strategy = makeReplacementStrategy(request.requestText, request.context.selection,
                                                  request.isOutsideField() ? 0 : request.finalDeleteCount);
    std::optional<platform::PasteboardItem> picture;
    if (result.imageData) {
        picture = co_await services_.platform.imageCodec.pasteboardItem(*result.imageData);
        if (!picture)  // told before a key is pressed: what was typed stays
            throw output::OutputWriterError(output::OutputWriterError::Code::invalidImageData);
        machine_.requireCurrent(request.id);
    }
    const auto shown = picture ? output::pictureCopied.toString() : QStringLiteral("[Image Generated]");
    auto entry = historyEntryOf(request.context, answered,
                                {request.finalText, result.text && !picture ? *result.text : shown, {}},
                                services_.platform.mainLoop.wallTime());
    const StoredWrite writing(services_.platform, [this, &request, &entry, &picture] {
        if (picture)
            entry.outputImagePath = services_.historyManager.saveImage(picture->dataByType.front().second, entry.id);
        record(request, entry);
    });
    if (picture)
        co_return co_await writeImage(request, *picture, strategy);
    if (!result.text)
        co_return output::Placement::Written;
    co_return co_await services_.outputWriter.writeText(*result.text, strategy.method, strategy.deleteCharCount,
                                                        text::characterCount(request.requestText), request.standing);
}

async::Task<output::Placement> RequestAnswer::writeImage(const TextRequest& request, platform::PasteboardItem picture,
                                                         const scenes::ReplacementStrategy& strategy) {
    auto& writer = services_.outputWriter;
    const auto typedCount = text::characterCount(request.requestText);
    auto paste = output::AutoPaste::Yes;
    switch (strategy.method) {
        case Method::replaceSelection:
            break;
        case Method::replaceComposition:
            co_await writer.writeText(QString(), strategy.method, strategy.deleteCharCount, typedCount);
            break;
        case Method::deleteChars:
            if (const auto count = strategy.deleteCharCount.value_or(typedCount);
                count > 0 && co_await writer.deleteBackward(count, request.standing) == output::Placement::OnClipboard)
                paste = output::AutoPaste::No;
            break;
    }
    const auto outcome = co_await writer.writeImage(std::move(picture), std::nullopt, paste);
    co_return paste == output::AutoPaste::No ? output::Placement::OnClipboard : outcome.placement;
}

void RequestAnswer::record(const TextRequest& request, persistence::HistoryEntry entry) {
    services_.historyManager.addEntry(std::move(entry));
    if (services_.adaptivePromptLearner && shouldRecordInput(request.finalText, request.imeActive))
        services_.adaptivePromptLearner->recordInput(request.finalText);
}

}  // namespace tavrelon::input
