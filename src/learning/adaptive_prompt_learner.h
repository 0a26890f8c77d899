#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "async/lifetime.h"
#include "async/task_scope.h"
#include "generation/pollinations_service.h"
#include "learning/input_recorder.h"
#include "learning/learner_state.h"
#include "persistence/history_manager.h"
#include "persistence/storage_manager.h"
#include "persistence/taught.h"
#include "platform/serial_queue.h"

namespace tavrelon::learning {

/// Learns how the user writes: keeps what was typed or said, and has a model write a system prompt from it every
/// `learningInterval` samples. The prompt goes into the settings. No failure reaches the user; samples stay for the
/// next attempt, which waits ten minutes after the first failure, twice as long after each further one, at most six
/// hours.
///
/// Made, called and destroyed on the main thread. The samples and their file belong to the queue
/// "tavrelon.adaptivePromptLearner", a thread that ends with this object once the recordings posted so far are stored.
class AdaptivePromptLearner : public InputRecorder {
 public:
    /// Loads the state; where there is none yet it starts with samples from the history. A state file that cannot be
    /// read is logged, counts as an empty one, and is overwritten at the next save. All services outlive the learner.
    AdaptivePromptLearner(async::MainLoop& mainLoop, platform::FileSystem& fileSystem, platform::Log& log,
                          platform::SerialQueues& queues, persistence::StorageManager& storageManager,
                          generation::PollinationsService& pollinationsService,
                          const persistence::HistoryManager& historyManager, qsizetype learningInterval);
    AdaptivePromptLearner(const AdaptivePromptLearner&) = delete;
    AdaptivePromptLearner& operator=(const AdaptivePromptLearner&) = delete;
    ~AdaptivePromptLearner() override;

    /// An update waits for a later input while `mayAsk` says no. Main thread.
    void askOnlyIf(std::function<bool()> mayAsk) { mayAsk_ = std::move(mayAsk); }

    void recordInput(const QString& text) override;

    /// What was forgotten, in memory alone; it goes with its last owner.
    struct Forgotten {
        persistence::TaughtRecord taught;
        LearnerState state;  ///< the queue's
    };

    /// Empties the samples and the learned prompt, on disk too, and gives them. An update under way teaches nothing any
    /// more. Main thread.
    std::shared_ptr<Forgotten> forget();

    /// Puts back what was forgotten, before what was gathered since. Main thread.
    void recall(const std::shared_ptr<Forgotten>& forgotten);

    /// Starts an update if enough samples wait for one. Returns at once.
    void scheduleEvaluation();

 private:
    /// A prompt, who wrote it, and the provider that was chosen then.
    struct Lesson {
        QString prompt;
        QString source;
        QString provider;
    };

    // On the calling thread, before the queue has its first block.
    void load();
    void seed(const persistence::HistoryManager& historyManager);

    // On the queue.
    void record(const QString& input);
    void evaluateUpdate();
    void endUpdate(const std::optional<Lesson>& lesson, int forgettings);
    void finish();
    void postpone();
    void save();

    // On the main thread.
    async::Task<void> update(std::vector<QString> samples, int forgettings);
    bool mayUpdate() const;
    async::Task<std::optional<Lesson>> learnedPrompt(std::vector<QString> samples);
    void storePrompt(const Lesson& lesson, int forgettings);

    async::MainLoop& mainLoop_;
    platform::FileSystem& fileSystem_;
    platform::Log& log_;
    persistence::StorageManager& storageManager_;
    generation::PollinationsService& pollinationsService_;
    qsizetype learningInterval_;
    std::function<bool()> mayAsk_ = [] { return true; };
    QString stateURL_;

    LearnerState state_;
    bool isUpdating_ = false;
    async::Instant nextUpdate_{};          ///< none begins before
    async::Instant::duration patience_{};  ///< that the last failure has cost
    std::atomic<int> forgettings_ = 0;     ///< asked for, on the main thread
    int forgettingsOfState_ = 0;           ///< those that the samples have gone through, on the queue

    // The settings belong to the main thread, but the queue asks whether learning is on at the moment of its work. This
    // copy follows every change of them.
    std::atomic<bool> learningEnabled_;
    persistence::ChangeSubscription settingsSubscription_;

    async::TaskScope updates_;
    async::Lifetime lifetime_;
    std::unique_ptr<platform::SerialQueue> queue_;  ///< ends first: its blocks refer to all of the above
};

}  // namespace tavrelon::learning
