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
        machine_.failInput(
            {QStringLiteral("Screen recording permission required"), QStringLiteral("需要屏幕录制权限")});
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
    const auto frames = co_await services_.videoRecorder.stopCapture();
    machine_.requireCurrent(id);
    if (!machine_.ensureAIEnabled() || !machine_.ensureNoPasswordField())
        co_return;
    const auto initial = machine_.initialTextSnapshot;
    const auto current = services_.contextCapturer.fetchFocusedTextSnapshot();
    machine_.initialTextSnapshot.reset();
    // Not the whole field when nothing was typed: what stood there before would be deleted for the description.
    const auto typed = deriveRequestText(current, std::nullopt, initial);
    co_await describe(typed.value_or(RequestText{QString(), 0}), frames, id);
    co_await machine_.complete(id, 2s);
}

async::Task<void> VideoFlow::describe(const RequestText& request, const std::vector<QByteArray>& frames,
                                      const QUuid& id) {
    const auto prompt = text::trimmedOrAbsent(request.text).value_or(QStringLiteral("Describe the video."));
    if (frames.empty())
        throw ProcessingError::generationFailed(
            {QStringLiteral("No video frames captured"), QStringLiteral("没有录到视频画面")});
    auto context = co_await services_.contextCapturer.captureContext(prompt, capture::ScreenshotWish::LeaveOut);
    machine_.requireCurrent(id);
    const auto answered = co_await generateWithRetry(
        machine_, services_.platform.mainLoop, id, services_.generator.deadline(), [&, this] {
            const auto& settings = services_.storageManager.settings();
            return services_.generator.generateVideoResult(
                {.input = prompt,
                 .context = context,
                 .voice = voiceForRequest(settings, std::nullopt, adaptivePromptForRequest(settings))},
                frames);
        });
    machine_.requireCurrent(id);
    const auto& text = answered.result.text;
    const StoredWrite writing(
        services_, historyEntryOf(context, answered,
                                  {prompt, text.value_or(QStringLiteral("[Video Result]")), QStringLiteral("video")},
                                  services_.platform.mainLoop.wallTime()));
    if (!text)
        co_return;
    // What was selected and not typed is pasted over.
    const auto typed = request.deleteCount.value_or(0);
    const auto strategy = makeReplacementStrategy(request.text, context.selection, typed);
    const auto placement = co_await services_.outputWriter.writeText(*text, strategy.method, strategy.deleteCharCount,
                                                                     typed, {request.text, request.place});
    machine_.requireCurrent(id);
    output::ensureWritten(placement);
}

}  // namespace tavrelon::input
