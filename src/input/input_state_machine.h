#pragma once

#include <QProperty>
#include <QUuid>
#include <functional>
#include <memory>
#include <optional>

#include "async/lifetime.h"
#include "async/task_scope.h"
#include "input/input_services.h"
#include "input/input_state.h"
#include "input/typed_text.h"
#include "media/speech_recognizer.h"

namespace tavrelon::input {

class TextRequestPipeline;
class VoiceFlow;
class AutoReplyFlow;
class VideoFlow;

/// Owns one input from the hotkey that starts it to the written result or the failure. Main thread.
///
/// Operations that change the state do so one turn after they return: an operation called in the same turn still sees
/// the old state. One processing task runs at a time; a task that was overtaken finds out by its identifier and ends
/// without touching anything.
class InputStateMachine {
 public:
    using TaskID = QUuid;

    explicit InputStateMachine(InputServices services);
    InputStateMachine(const InputStateMachine&) = delete;
    InputStateMachine& operator=(const InputStateMachine&) = delete;
    ~InputStateMachine();

    // What others observe.
    InputState currentState() const { return currentState_.value(); }
    QString currentTranscript() const { return currentTranscript_.value(); }
    std::optional<text::LocalizedText> lastError() const { return lastError_.value(); }
    std::optional<InputTrigger> activeTrigger() const { return activeTrigger_.value(); }
    QBindable<InputState> bindableCurrentState() { return &currentState_; }
    QBindable<QString> bindableCurrentTranscript() { return &currentTranscript_; }
    bool isRecogniserLoading() const { return isRecogniserLoading_.value(); }
    QBindable<bool> bindableIsRecogniserLoading() { return &isRecogniserLoading_; }
    const QString& typedInputBuffer() const { return typedText_.text(); }
    bool wereKeysTold() const { return typedText_.wereKeysTold(); }

    // What hotkeys and the prompt box call.
    void startTextInput();
    void commitTextInput();
    /// `into` is the application that the answer is for, where the focus may still be on its way back there.
    void submitFloatingInput(const QString& text, const std::optional<platform::RunningApplication>& into = {});
    void handleVoiceHotkey();
    void handleVoiceDictationHotkey();
    void startVideoInput();
    void stopVideoInput();
    void startAutoReply();
    void cancelInput();
    void cancelProcessing();
    void resetToIdle();

    /// Ends the display of a result or failure, unless a new input has begun meanwhile.
    void returnToIdle();

    /// Attaches the recognizer, which outlives the machine. Called once.
    void setSpeechRecognizer(media::SpeechRecognizer& recognizer);

    // What the flows share.
    bool isNewInputPossible() const { return currentState().acceptsNewInput(); }

    /// The gate of every new input: nothing runs, or only the end of one whose result or failure is still shown, which
    /// loses the stage.
    bool takeStage();
    void enterInputState(const InputState& state, InputTrigger trigger);
    bool ensureAIEnabled();

    /// Whether no password field has the focus, so that an input may begin or go on; otherwise what was taken of the
    /// input so far is forgotten, and it ends with a message.
    bool ensureNoPasswordField();

    /// Runs `operation` as the one processing task; what it throws ends the input: a cancellation quietly, anything
    /// else as a failure whose line in the log begins with `failureLog`.
    void beginProcessingTask(QString failureLog, std::function<async::Task<void>(TaskID)> operation);

    /// Throws `CancellationError`, which ends the task quietly, unless `id` is the running task and was not asked to
    /// stop. For after every wait.
    void requireCurrent(const TaskID& id) const;

    /// Whether `id` is the running task, asked to stop or not.
    bool ownsInput(const TaskID& id) const { return processingTaskID_ == id; }
    void resetIfOwned(const TaskID& id);

    /// The end of a flow: `completed`, a pause, and back to idle, each only while `id` still owns the input.
    async::Task<void> complete(TaskID id, std::chrono::milliseconds pauseLength);

    /// Logs the error behind the prefix and shows it, if `id` still owns the input by then.
    void fail(const TaskID& id, const QString& logPrefix, const std::exception& error);

    /// Shows a failure that belongs to no task.
    void failInput(const text::LocalizedText& message);

    void startRecordingFrames();
    void setStateLater(const InputState& state);
    void enterProcessingLater(InputTrigger trigger);
    void schedule(std::function<void()> block);

    /// The focused text when the input began; taken once by the flow that uses it.
    std::optional<capture::AccessibilityTextSnapshot> initialTextSnapshot;
    /// Held from the input's beginning until its picture is taken.
    std::shared_ptr<void> expectedScreenshot;
    void setRecogniserLoading(bool isLoading) { isRecogniserLoading_ = isLoading; }
    void setCurrentTranscript(const QString& transcript) { currentTranscript_ = transcript; }

    TextRequestPipeline& textRequests() { return *textRequests_; }

 private:
    async::Task<void> runProcessingTask(QString failureLog, std::function<async::Task<void>(TaskID)> operation,
                                        TaskID id);
    void setState(const InputState& state);
    void finishProcessingTask(const TaskID& id);
    void dropProcessingTask();
    void watchForPasswordField();
    void dropFramesLater();
    async::Task<void> dropFrames();

    InputServices services_;
    QProperty<InputState> currentState_;
    bool isStageTaken_ = false;  ///< an input has begun, but its state shows a turn later
    QProperty<QString> currentTranscript_;
    QProperty<bool> isRecogniserLoading_{false};
    QProperty<std::optional<text::LocalizedText>> lastError_;
    QProperty<std::optional<InputTrigger>> activeTrigger_;
    TypedText typedText_;
    std::optional<async::TaskHandle> processingTask_;
    std::optional<TaskID> processingTaskID_;
    std::unique_ptr<TextRequestPipeline> textRequests_;
    std::unique_ptr<VoiceFlow> voice_;
    std::unique_ptr<AutoReplyFlow> autoReply_;
    std::unique_ptr<VideoFlow> video_;
    async::Timer secondLook_;
    async::TaskScope tasks_;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::input
