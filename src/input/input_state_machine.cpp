#include "input/input_state_machine.h"

#include "async/waits.h"
#include "input/auto_reply_flow.h"
#include "input/text_request_pipeline.h"
#include "input/video_flow.h"
#include "input/voice_flow.h"

namespace tavrelon::input {

using Case = InputState::Case;

namespace {

constexpr std::chrono::milliseconds untilSecondLook{200};

}  // namespace

InputStateMachine::InputStateMachine(InputServices services)
    : services_(services),
      typedText_(services.platform),
      textRequests_(std::make_unique<TextRequestPipeline>(*this, services)),
      voice_(std::make_unique<VoiceFlow>(*this, services)),
      autoReply_(std::make_unique<AutoReplyFlow>(*this, services)),
      video_(std::make_unique<VideoFlow>(*this, services)),
      tasks_(services.platform.mainLoop) {
    services.platform.accessibility.onFocusChange(lifetime_.guard([this] {
        watchForPasswordField();
        // The element may speak before its window is known to be in front.
        secondLook_ = services_.platform.mainLoop.after(untilSecondLook, [this] { watchForPasswordField(); });
    }));
}

InputStateMachine::~InputStateMachine() = default;

bool InputStateMachine::takeStage() {
    if (!isNewInputPossible())
        return false;
    dropProcessingTask();
    isStageTaken_ = true;
    return true;
}

void InputStateMachine::setState(const InputState& state) {
    isStageTaken_ = false;
    currentState_ = state;
}

void InputStateMachine::startTextInput() {
    if (!takeStage() || !ensureAIEnabled() || !ensureNoPasswordField())
        return;
    // First of all: the user types on while the field is being read.
    typedText_.begin([this] {
        services_.platform.log.line(QStringLiteral("[StateMachine] The input is forgotten: its window was left"));
        cancelInput();
    });
    initialTextSnapshot = services_.contextCapturer.fetchFocusedTextSnapshot();
    schedule([this] { enterInputState(Case::listening, InputTrigger::text); });
}

void InputStateMachine::commitTextInput() {
    if (currentState() != Case::listening || !ensureNoPasswordField())
        return;
    auto snapshot = services_.contextCapturer.fetchFocusedTextSnapshot();
    services_.outputWriter.aim();
    setStateLater(Case::processing);
    beginProcessingTask(TextRequestPipeline::failureLog,
                        [this, snapshot = std::move(snapshot), buffer = typedText_.end()](TaskID id) {
                            return textRequests_->processTextRequest(buffer, snapshot, id, TranscriptInserted::No);
                        });
}

void InputStateMachine::submitFloatingInput(const QString& text,
                                            const std::optional<platform::RunningApplication>& into) {
    if (!takeStage() || !ensureAIEnabled() || !ensureNoPasswordField())
        return;
    into ? services_.outputWriter.aimAt(*into) : services_.outputWriter.aim();
    initialTextSnapshot.reset();
    typedText_.end();
    enterProcessingLater(InputTrigger::floatingInput);
    schedule([this, text] {
        beginProcessingTask(TextRequestPipeline::failureLog, [this, text](TaskID id) {
            return textRequests_->processTextRequest(text, std::nullopt, id, TranscriptInserted::No);
        });
    });
}

void InputStateMachine::handleVoiceHotkey() {
    voice_->handleVoiceHotkey();
}
void InputStateMachine::handleVoiceDictationHotkey() {
    voice_->handleVoiceDictationHotkey();
}
void InputStateMachine::setSpeechRecognizer(media::SpeechRecognizer& recognizer) {
    voice_->setSpeechRecognizer(recognizer);
}
void InputStateMachine::startAutoReply() {
    autoReply_->startAutoReply();
}
void InputStateMachine::startVideoInput() {
    video_->startVideoInput();
}
void InputStateMachine::stopVideoInput() {
    video_->stopVideoInput();
}

void InputStateMachine::cancelInput() {
    switch (currentState().value) {
        case Case::processing:
            cancelProcessing();
            return;
        case Case::listeningVoice:
            voice_->cancel();
            break;
        case Case::recordingVideo:
            dropFramesLater();
            break;
        default:
            break;
    }
    initialTextSnapshot.reset();
    expectedScreenshot.reset();
    typedText_.end();
    schedule([this] {
        setState(Case::idle);
        currentTranscript_ = QString();
        activeTrigger_ = std::nullopt;
    });
}

void InputStateMachine::cancelProcessing() {
    if (currentState() != Case::processing)
        return;
    dropProcessingTask();
    resetToIdle();
}

/// The task finds itself overtaken when it wakes.
void InputStateMachine::dropProcessingTask() {
    if (processingTask_)
        processingTask_->cancel();
    processingTask_.reset();
    processingTaskID_.reset();
}

void InputStateMachine::resetToIdle() {
    schedule([this] {
        setState(Case::idle);
        currentTranscript_ = QString();
        lastError_ = std::nullopt;
        activeTrigger_ = std::nullopt;
    });
    voice_->stopSilenceTimer();
    initialTextSnapshot.reset();
    expectedScreenshot.reset();
    typedText_.end();
    dropFramesLater();
}

void InputStateMachine::returnToIdle() {
    if (!isStageTaken_ && (currentState() == Case::completed || currentState() == Case::error))
        resetToIdle();
}

void InputStateMachine::enterInputState(const InputState& state, InputTrigger trigger) {
    // Before the state shows on the screen, perhaps over the very window that the picture is to be of.
    if (trigger != InputTrigger::voiceDictation)
        expectedScreenshot = trigger == InputTrigger::video ? services_.contextCapturer.screenshots.expectWindowImage()
                                                            : services_.contextCapturer.screenshots.expectScreenshot();
    setState(state);
    currentTranscript_ = QString();
    activeTrigger_ = trigger;
}

bool InputStateMachine::ensureAIEnabled() {
    if (services_.storageManager.settings().enableAI)
        return true;
    failInput({QStringLiteral("AI is disabled"), QStringLiteral("AI 已停用")});
    return false;
}

bool InputStateMachine::ensureNoPasswordField() {
    if (!services_.platform.accessibility.isFocusSecure())
        return true;
    if (currentState() == Case::listeningVoice)
        voice_->cancel();
    initialTextSnapshot.reset();
    expectedScreenshot.reset();
    typedText_.end();
    dropFramesLater();
    failInput({QStringLiteral("Password field"), QStringLiteral("密码输入框")});
    return false;
}

void InputStateMachine::watchForPasswordField() {
    if (currentState() == Case::listening)
        ensureNoPasswordField();
}

void InputStateMachine::failInput(const text::LocalizedText& message) {
    services_.platform.log.line(QStringLiteral("[StateMachine] ") + message.english);
    schedule([this, message] {
        lastError_ = message;
        setState(InputState::error(message));
    });
}

void InputStateMachine::beginProcessingTask(QString failureLog, std::function<async::Task<void>(TaskID)> operation) {
    dropProcessingTask();
    const auto id = TaskID::createUuid();
    processingTaskID_ = id;
    processingTask_ = tasks_.spawn(runProcessingTask(std::move(failureLog), std::move(operation), id));
}

async::Task<void> InputStateMachine::runProcessingTask(QString failureLog,
                                                       std::function<async::Task<void>(TaskID)> operation, TaskID id) {
    try {
        co_await operation(id);
    } catch (const async::CancellationError&) {
        resetIfOwned(id);
    } catch (const std::exception& error) {
        fail(id, failureLog, error);
    }
    // A turn later: blocks that the flow has just scheduled still ask whether it owns the input.
    schedule([this, id] { finishProcessingTask(id); });
}

void InputStateMachine::finishProcessingTask(const TaskID& id) {
    if (!ownsInput(id))
        return;
    processingTaskID_.reset();
    processingTask_.reset();
}

void InputStateMachine::requireCurrent(const TaskID& id) const {
    if (!ownsInput(id) || !processingTask_ || processingTask_->isCancelled())
        throw async::CancellationError();
}

void InputStateMachine::resetIfOwned(const TaskID& id) {
    if (ownsInput(id))
        resetToIdle();
}

async::Task<void> InputStateMachine::complete(TaskID id, std::chrono::milliseconds pauseLength) {
    schedule([this, id] {
        if (ownsInput(id))
            setState(Case::completed);
    });
    co_await async::ignoringCancellation(async::pause(services_.platform.mainLoop, pauseLength));
    resetIfOwned(id);
}

void InputStateMachine::fail(const TaskID& id, const QString& logPrefix, const std::exception& error) {
    const auto message = text::descriptionOf(error);
    services_.platform.log.line(logPrefix + message.english);
    schedule([this, id, message] {
        if (!ownsInput(id))
            return;
        lastError_ = message;
        setState(InputState::error(message));
    });
}

void InputStateMachine::setStateLater(const InputState& state) {
    schedule([this, state] { setState(state); });
}

void InputStateMachine::enterProcessingLater(InputTrigger trigger) {
    schedule([this, trigger] {
        setState(Case::processing);
        activeTrigger_ = trigger;
    });
}

void InputStateMachine::schedule(std::function<void()> block) {
    services_.platform.mainLoop.post(lifetime_.guard(std::move(block)));
}

void InputStateMachine::startRecordingFrames() {
    tasks_.spawn(services_.videoRecorder.startCapture());
}

void InputStateMachine::dropFramesLater() {
    tasks_.spawn(dropFrames());
}

async::Task<void> InputStateMachine::dropFrames() {
    co_await services_.videoRecorder.stopCapture();
}

}  // namespace tavrelon::input
