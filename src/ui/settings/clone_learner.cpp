#include "ui/settings/clone_learner.h"

#include "learning/clone_error.h"
#include "persistence/taught.h"
#include "text/characters.h"

namespace tavrelon::ui {

using learning::CloneInput;
using learning::CloneProfile;
using learning::CloneServiceError;

void CloneLearner::learnFromLink(const QString& link) {
    if (!activeTarget_)
        start(CloneLearningTarget::Link, services_.clone.learn(link, CloneInput::Page));
}

void CloneLearner::learnFromFile(const QUrl& file) {
    if (!activeTarget_)
        start(CloneLearningTarget::File, learnFile(file));
}

async::Task<CloneProfile> CloneLearner::learnFile(QUrl file) {
    auto samples = text::trimmed(co_await services_.clone.readFileText(std::move(file)));
    constexpr auto minimum = learning::CloneService::minContentLength;
    if (text::characterCount(samples) < minimum)
        throw CloneServiceError::contentTooShort(minimum);
    co_return co_await services_.clone.learn(std::move(samples), CloneInput::Text);
}

void CloneLearner::start(CloneLearningTarget target, async::Task<CloneProfile> learning) {
    activeTarget_ = target;
    outcome_.reset();
    tasks_.spawn(finish(std::move(learning), persistence::providerOf(services_.storage.settings())));
    Q_EMIT changed();
}

async::Task<void> CloneLearner::finish(async::Task<CloneProfile> learning, QString provider) {
    try {
        keep(co_await std::move(learning), provider);
        outcome_.emplace(nullptr);
    } catch (const std::exception&) {
        outcome_.emplace(std::current_exception());
    }
    activeTarget_.reset();
    Q_EMIT changed();
}

void CloneLearner::keep(const CloneProfile& profile, const QString& provider) {
    services_.storage.changeSettings([&](persistence::AppSettings& changed) {
        changed.cloneLanguageStyle = profile.languageStyle;
        changed.cloneSystemPrompt = profile.systemPrompt;
        changed.cloneLanguageStyleUpdatedAt = services_.mainLoop.wallTime();
        noteSource(changed, persistence::Taught::CloneProfile, profile.source, provider);
    });
    services_.storage.saveSettings();
}

}  // namespace tavrelon::ui
