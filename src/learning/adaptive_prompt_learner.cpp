#include "learning/adaptive_prompt_learner.h"

#include <algorithm>
#include <utility>

#include "generation/text_chain.h"
#include "learning/adaptive_prompt.h"

namespace tavrelon::learning {

using namespace Qt::StringLiterals;

namespace {

constexpr auto tag = "[AdaptivePrompt] "_L1;
constexpr qint64 maxTokens = 400;
constexpr float temperature = 0.2F;

/// A service that fails is not asked at every input: each time it gets all the samples again.
constexpr std::chrono::minutes firstPatience{10};
constexpr std::chrono::hours longestPatience{6};

}  // namespace

AdaptivePromptLearner::AdaptivePromptLearner(async::MainLoop& mainLoop, platform::FileSystem& fileSystem,
                                             platform::Log& log, platform::SerialQueues& queues,
                                             persistence::StorageManager& storageManager,
                                             generation::PollinationsService& pollinationsService,
                                             const persistence::HistoryManager& historyManager,
                                             qsizetype learningInterval)
    : mainLoop_(mainLoop),
      fileSystem_(fileSystem),
      log_(log),
      storageManager_(storageManager),
      pollinationsService_(pollinationsService),
      learningInterval_(std::max<qsizetype>(learningInterval, 1)),
      stateURL_(storageManager.applicationSupport() + u"/adaptive_prompt_state.json"_s),
      learningEnabled_(storageManager.settings().enableLocalLearning),
      settingsSubscription_(
          storageManager.onChange([this] { learningEnabled_ = storageManager_.settings().enableLocalLearning; })),
      updates_(mainLoop),
      queue_(queues.create(u"tavrelon.adaptivePromptLearner"_s)) {
    // If the folder cannot be made, the first save says so.
    static_cast<void>(fileSystem_.createDirectory(storageManager.applicationSupport()));
    if (fileSystem_.exists(stateURL_))
        load();
    else if (learningEnabled_)
        seed(historyManager);
}

AdaptivePromptLearner::~AdaptivePromptLearner() = default;

void AdaptivePromptLearner::load() {
    const auto failed = [this](const QString& error) { log_.line(tag + "Failed to load state: "_L1 + error); };
    const auto document = fileSystem_.read(stateURL_);
    if (!document)
        return failed(document.error().description);
    try {
        state_ = learnerStateFrom(text::parseJson(*document));
    } catch (const text::JsonError& error) {
        failed(error.localizedDescription());
    }
}

void AdaptivePromptLearner::seed(const persistence::HistoryManager& historyManager) {
    const auto& entries = historyManager.entries();
    const auto count = std::min<qsizetype>(learningInterval_, std::ssize(entries));
    for (auto entry = entries.begin(); entry != entries.begin() + count; ++entry)
        if (auto sample = adaptive_prompt::cleanedSample(entry->inputText))
            state_.pendingInputs.push_back(*std::move(sample));
    save();  // an empty one too: what is forgotten does not come back from the history
}

std::shared_ptr<AdaptivePromptLearner::Forgotten> AdaptivePromptLearner::forget() {
    ++forgettings_;
    const auto forgotten = std::make_shared<Forgotten>();
    storageManager_.changeSettings([&](persistence::AppSettings& settings) {
        forgotten->taught = forgetTaught(settings, persistence::Taught::AdaptivePrompt);
    });
    storageManager_.saveSettings();
    queue_->post([this, forgotten, forgettings = forgettings_.load()] {
        forgotten->state = std::exchange(state_, {});
        forgettingsOfState_ = forgettings;
        save();
    });
    return forgotten;
}

void AdaptivePromptLearner::recall(const std::shared_ptr<Forgotten>& forgotten) {
    storageManager_.changeSettings([&](persistence::AppSettings& settings) {
        restoreTaught(settings, persistence::Taught::AdaptivePrompt, forgotten->taught);
    });
    storageManager_.saveSettings();
    queue_->post([this, forgotten] {
        auto& pending = state_.pendingInputs;
        pending.insert(pending.begin(), forgotten->state.pendingInputs.begin(), forgotten->state.pendingInputs.end());
        if (!state_.lastUpdatedAt)
            state_.lastUpdatedAt = forgotten->state.lastUpdatedAt;
        save();
    });
}

void AdaptivePromptLearner::recordInput(const QString& text) {
    queue_->post([this, text] { record(text); });
}

void AdaptivePromptLearner::scheduleEvaluation() {
    queue_->post([this] { evaluateUpdate(); });
}

void AdaptivePromptLearner::record(const QString& input) {
    if (!learningEnabled_)
        return;
    auto sample = adaptive_prompt::cleanedSample(input);
    if (!sample)
        return;
    state_.pendingInputs.push_back(*std::move(sample));
    save();
    evaluateUpdate();
}

void AdaptivePromptLearner::evaluateUpdate() {
    if (!learningEnabled_ || isUpdating_)
        return;
    if (std::ssize(state_.pendingInputs) < learningInterval_ || mainLoop_.now() < nextUpdate_)
        return;
    isUpdating_ = true;
    const auto first = state_.pendingInputs.begin();
    std::vector<QString> samples(first, first + learningInterval_);
    mainLoop_.post(lifetime_.guard([this, samples = std::move(samples), forgettings = forgettingsOfState_]() mutable {
        updates_.spawn(update(std::move(samples), forgettings));
    }));
}

async::Task<void> AdaptivePromptLearner::update(std::vector<QString> samples, int forgettings) {
    // What was forgotten on the way here is not sent.
    const bool isAllowed = forgettings == forgettings_ && mayUpdate();
    const auto lesson = isAllowed ? co_await learnedPrompt(std::move(samples)) : std::nullopt;
    queue_->post([this, lesson, isAllowed, forgettings] {
        isUpdating_ = false;
        if (isAllowed)
            endUpdate(lesson, forgettings);
    });
}

bool AdaptivePromptLearner::mayUpdate() const {
    return storageManager_.settings().enableLocalLearning && mayAsk_();
}

async::Task<std::optional<AdaptivePromptLearner::Lesson>> AdaptivePromptLearner::learnedPrompt(
    std::vector<QString> samples) {
    const auto provider = persistence::providerOf(storageManager_.settings());
    try {
        const auto answer =
            co_await generation::answerText(pollinationsService_, {.system = adaptive_prompt::systemPrompt(),
                                                                   .user = adaptive_prompt::userPrompt(samples),
                                                                   .maxTokens = maxTokens,
                                                                   .temperature = temperature});
        if (const auto prompt = adaptive_prompt::cleanedPrompt(answer.text))
            co_return Lesson{*prompt, answer.source, provider};
    } catch (const std::exception& error) {
        log_.line(tag + "Failed to update system prompt: "_L1 + text::localizedDescription(error));
    }
    co_return std::nullopt;
}

void AdaptivePromptLearner::endUpdate(const std::optional<Lesson>& lesson, int forgettings) {
    if (forgettings != forgettings_)
        return;
    if (!lesson)
        return postpone();
    mainLoop_.post(lifetime_.guard([this, lesson = *lesson, forgettings] { storePrompt(lesson, forgettings); }));
    finish();
}

void AdaptivePromptLearner::finish() {
    auto& pending = state_.pendingInputs;
    pending.erase(pending.begin(), pending.begin() + std::min<qsizetype>(learningInterval_, std::ssize(pending)));
    state_.lastUpdatedAt = mainLoop_.wallTime();
    patience_ = {};
    save();
    evaluateUpdate();
}

void AdaptivePromptLearner::postpone() {
    patience_ = std::clamp<async::Instant::duration>(patience_ * 2, firstPatience, longestPatience);
    nextUpdate_ = mainLoop_.now() + patience_;
}

void AdaptivePromptLearner::storePrompt(const Lesson& lesson, int forgettings) {
    if (forgettings != forgettings_)
        return;
    storageManager_.changeSettings([&](persistence::AppSettings& settings) {
        settings.adaptiveSystemPrompt = lesson.prompt;
        settings.adaptiveSystemPromptUpdatedAt = mainLoop_.wallTime();
        noteSource(settings, persistence::Taught::AdaptivePrompt, lesson.source, lesson.provider);
    });
    storageManager_.saveSettings();
}

void AdaptivePromptLearner::save() {
    const auto written = fileSystem_.write(stateURL_, text::compactJson(toJson(state_)));
    if (!written)
        log_.line(tag + "Failed to save state: "_L1 + written.error().description);
}

}  // namespace tavrelon::learning
