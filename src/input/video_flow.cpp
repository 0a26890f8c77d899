#include "input/video_flow.h"

#include "generation/processing_error.h"
#include "input/history_record.h"
#include "input/request_settings.h"
#include "input/request_text.h"

namespace tavrelon::input {

using namespace std::chrono_literals;
using generation::ProcessingError;

void VideoFlow::startVideoInput() {
    if (!machine_.takeStage() || !machine_.ensureAIEnabled() || !machine_.ensureNoPasswordField())
        return;
    if (!services_.platform.screenCapture.preflightAccess()) {
        machine_.failInput(QStringLiteral("Screen recording permission required"));
        return;
    }
    machine_.initialTextSnapshot = services_.contextCapturer.fetchFocusedTextSnapshot();
    services_.outputWriter.aim();
    machine_.startRecordingFrames();
    machine_.schedule([this] { machine_.enterInputState(InputState::Case::recordingVideo, InputTrigger::video); });
}

void VideoFlow::stopVideoInput() {
    if (machine_.currentState() != InputState::Case::recordingVideo ||
        machine_.activeTrigger() != InputTrigger::video || !machine_.ensureNoPasswordField())
        return;
    machine_.setStateLater(InputState::Case::processing);
    machine_.beginProcessingTask(QStringLiteral("Error processing video input: "),
                                 [this](QUuid id) { return process(id); });
}

async::Task<void> VideoFlow::process(QUuid id) {
    auto frames = co_await services_.videoRecorder.stopCapture();
    co_await processVideoInput(QString(), std::move(frames), id);
}

async::Task<void> VideoFlow::processVideoInput(QString text, std::vector<QByteArray> frames, QUuid id) {
    if (!machine_.isCurrentTask(id) || !machine_.ensureAIEnabled() || !machine_.ensureNoPasswordField())
        co_return;
    const auto initial = machine_.initialTextSnapshot;
    const auto current = services_.contextCapturer.fetchFocusedTextSnapshot();
    machine_.initialTextSnapshot.reset();
    // Not the whole field when nothing was typed: what stood there before would be deleted for the description.
    const auto typed = deriveRequestText(current, std::nullopt, initial);
    if (typed)
        co_await describe(*typed, frames, id);
    else
        co_await describe({std::move(text), 0}, frames, id);
}

async::Task<void> VideoFlow::describe(const RequestText& request, const std::vector<QByteArray>& frames,
                                      const QUuid& id) {
    const auto prompt = text::trimmedOrAbsent(request.text).value_or(QStringLiteral("Describe the video."));
    if (frames.empty())
        throw ProcessingError::generationFailed(QStringLiteral("No video frames captured"));
    auto context = co_await services_.contextCapturer.captureContext(prompt, capture::ScreenshotWish::LeaveOut);
    if (!machine_.isCurrentTask(id))
        co_return;
    const auto retried = co_await generateWithRetry(
        machine_, services_.platform.mainLoop, id, services_.generator.deadline(), [&, this] {
            const auto& settings = services_.storageManager.settings();
            return services_.generator.generateVideoResult(
                {.input = prompt,
                 .context = context,
                 .voice = voiceForRequest(settings, std::nullopt, adaptivePromptForRequest(settings))},
                frames);
        });
    if (!machine_.isCurrentTask(id))
        co_return;
    std::optional<StoredWrite> writing(
        std::in_place, services_.platform,
        [this, entry = historyEntryOf(context, retried.result,
                                      {prompt, retried.result.text.value_or(QStringLiteral("[Video Result]")),
                                       QStringLiteral("video"), retried.retryCount},
                                      services_.platform.mainLoop.wallTime())] {
            services_.historyManager.addEntry(entry);
        });
    if (retried.result.text) {
        // What was selected and not typed is pasted over.
        const auto typed = request.deleteCount.value_or(0);
        const auto strategy = makeReplacementStrategy(request.text, context.selection, typed);
        const auto placement = co_await services_.outputWriter.writeText(
            *retried.result.text, strategy.method, strategy.deleteCharCount, typed, {request.text, request.place});
        if (!machine_.isCurrentTask(id))
            co_return;
        output::ensureWritten(placement);
    }
    writing.reset();
    co_await machine_.complete(id, 2s);
}

}  // namespace tavrelon::input
