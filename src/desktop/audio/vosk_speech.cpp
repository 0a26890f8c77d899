#include "desktop/audio/vosk_speech.h"

#include <QDir>
#include <QFileInfo>
#include <condition_variable>

#include "desktop/audio/vosk_session.h"

namespace tavrelon::desktop {

using platform::AuthorizationStatus;

namespace {

const auto libraryName = QStringLiteral("libvosk.so");

std::expected<std::shared_ptr<VoskLibrary>, QString> loadFrom(const QString& folder) {
    const auto ownFile = folder + u'/' + libraryName;
    if (QFileInfo::exists(ownFile))
        return VoskLibrary::load(ownFile);
    return VoskLibrary::load(libraryName);
}

class VoskTask : public platform::SpeechTask {
 public:
    VoskTask(std::shared_ptr<VoskSession> session, std::function<void()> whenEnded)
        : session_(std::move(session)), whenEnded_(std::move(whenEnded)) {}
    ~VoskTask() override {
        session_->cancel();
        whenEnded_();
    }
    void cancel() override { session_->cancel(); }
    void finish() override { session_->endAudio(); }

 private:
    std::shared_ptr<VoskSession> session_;
    std::function<void()> whenEnded_;
};

}  // namespace

/// A library on its way into memory.
struct VoskSpeech::Loading {
    std::mutex mutex;
    std::condition_variable changed;
    std::optional<std::expected<std::shared_ptr<VoskLibrary>, QString>> outcome;
};

VoskSpeech::VoskSpeech(async::MainLoop& loop, platform::Log& log, const QString& applicationSupport)
    : loop_(loop), log_(log), folder_(applicationSupport + QStringLiteral("/speech")) {
    if (QFileInfo::exists(folder_ + u'/' + libraryName))
        startLoading();
}

QStringList VoskSpeech::locales() {
    return QDir(folder_).entryList(QDir::Dirs | QDir::NoDotAndDotDot,
                                   QDir::Name);  // no hidden ones: those are half there
}

bool VoskSpeech::isAvailable(const QString& locale) {
    const auto model = modelFolder(locale);
    const bool hasModel = QFileInfo(model).isDir() && !models_->isUnusable(model);
    if (!library_)
        load();
    if (library_ && hasModel)
        return true;
    log_.line(QStringLiteral("[Speech] No recogniser: looked for the library in %1/%2 and on the system's library path "
                             "(%3), and for the model in %4 (%5)")
                  .arg(folder_, libraryName, library_ ? QStringLiteral("found") : whyNot_, model,
                       hasModel                   ? QStringLiteral("found")
                       : QFileInfo(model).isDir() ? QStringLiteral("could not be read, and is still the same")
                                                  : QStringLiteral("no such folder")));
    return false;
}

void VoskSpeech::startLoading() {
    loading_ = std::make_shared<Loading>();
    threads_.start("speech library", [loading = loading_, folder = folder_] {
        auto outcome = loadFrom(folder);
        const std::lock_guard lock(loading->mutex);
        loading->outcome = std::move(outcome);
        loading->changed.notify_all();
    });
}

/// The outcome of a library that takes longer than the limit is found by a later question.
void VoskSpeech::load() {
    if (!loading_)
        startLoading();
    std::unique_lock lock(loading_->mutex);
    loading_->changed.wait_for(lock, loadLimit, [this] { return loading_->outcome.has_value(); });
    whyNot_ = QStringLiteral("still being loaded");
    if (!loading_->outcome)
        return;
    if (const auto& outcome = *loading_->outcome)
        library_ = *outcome;
    else
        whyNot_ = outcome.error();
    lock.unlock();
    loading_.reset();
}

void VoskSpeech::requestAuthorization(AuthorizationHandler completion) {
    loop_.post([completion = std::move(completion)] { completion(AuthorizationStatus::Authorized); });
}

std::shared_ptr<platform::SpeechRequest> VoskSpeech::createRequest(const platform::SpeechRequestOptions& options) {
    if (!library_)
        return nullptr;
    modelFolder_ = modelFolder(options.locale);
    return std::make_shared<VoskSession>();
}

std::unique_ptr<platform::SpeechTask> VoskSpeech::startTask(std::shared_ptr<platform::SpeechRequest> request,
                                                            HearingHandler whenHearing, ResultHandler handler) {
    auto session = std::static_pointer_cast<VoskSession>(std::move(request));
    auto tell = [handler = std::move(handler),
                 &log = log_](std::expected<platform::SpeechResult, platform::SpeechError> outcome) {
        if (!outcome)
            log.line(QStringLiteral("[Speech] The recognition failed: ") + outcome.error().description);
        handler(std::move(outcome));
    };
    giveBack_.reset();
    ++runningTasks_;
    threads_.start("speech", [session, library = library_, models = models_, folder = modelFolder_,
                              listener = VoskSession::Listener{std::move(whenHearing), std::move(tell)}] {
        session->run(*library, *models, folder, listener);
    });
    return std::make_unique<VoskTask>(std::move(session), lifetime_.guard([this] { endTask(); }));
}

void VoskSpeech::endTask() {
    if (--runningTasks_ == 0)
        giveBack_ = loop_.after(modelKept,
                                [this] { threads_.start("speech model", [models = models_] { models->giveBack(); }); });
}

}  // namespace tavrelon::desktop
