#pragma once

#include <QString>
#include <memory>

#include "async/lifetime.h"
#include "async/main_loop.h"
#include "desktop/audio/vosk_models.h"
#include "desktop/audio/worker_threads.h"
#include "platform/log.h"
#include "platform/speech.h"

namespace tavrelon::desktop {

/// Recognises speech on this machine with the Vosk library, where the user has installed it.
///
/// The library is `libvosk.so` in the folder `speech` of application support, or else where the system's loader finds
/// it; the model of a locale is the folder `speech/<locale>`. Both are looked for when somebody asks, so that an
/// installation needs no restart; a library that is there at the start is loaded then. Loading and recognising happen
/// on threads of their own, one for each recognition; the main thread waits for `loadLimit` at most, the first time. A
/// model is read when a recognition needs it, and given back when none has needed it for `modelKept`.
class VoskSpeech : public platform::Speech {
 public:
    static constexpr std::chrono::milliseconds loadLimit{250};
    static constexpr std::chrono::minutes modelKept{10};

    VoskSpeech(async::MainLoop& loop, platform::Log& log, const QString& applicationSupport);

    QStringList locales() override;

    /// False also for a model that could not be read, until another has taken its place. Logs in one line what is
    /// missing and where it was looked for.
    bool isAvailable(const QString& locale) override;

    /// Nobody is asked: the sound stays on this machine.
    platform::AuthorizationStatus authorizationStatus() override { return platform::AuthorizationStatus::Authorized; }
    void requestAuthorization(AuthorizationHandler completion) override;
    bool supportsOnDeviceRecognition(const QString&) override { return true; }
    std::shared_ptr<platform::SpeechRequest> createRequest(const platform::SpeechRequestOptions& options) override;
    std::unique_ptr<platform::SpeechTask> startTask(std::shared_ptr<platform::SpeechRequest> request,
                                                    HearingHandler whenHearing, ResultHandler handler) override;

 private:
    struct Loading;

    QString modelFolder(const QString& locale) const { return folder_ + u'/' + locale; }
    void startLoading();
    void load();
    void endTask();

    async::MainLoop& loop_;
    platform::Log& log_;
    QString folder_;
    QString modelFolder_;  ///< of the newest request
    std::shared_ptr<Loading> loading_;
    std::shared_ptr<VoskLibrary> library_;
    QString whyNot_;  ///< why there is no library
    std::shared_ptr<VoskModels> models_ = std::make_shared<VoskModels>();
    int runningTasks_ = 0;
    async::Timer giveBack_;
    WorkerThreads threads_;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::desktop
