#pragma once

#include <QTemporaryDir>
#include <atomic>

#include "desktop/qt/qt_main_loop.h"
#include "desktop/session/session_adapters.h"

namespace tavrelon::bench {

/// Takes the sound and understands nothing.
class NoEngine : public platform::Speech {
 public:
    explicit NoEngine(std::atomic<std::size_t>& samples) : samples_(samples) {}

    QStringList locales() override { return {QStringLiteral("zh-CN")}; }
    bool isAvailable(const QString&) override { return true; }
    platform::AuthorizationStatus authorizationStatus() override { return platform::AuthorizationStatus::Authorized; }
    void requestAuthorization(AuthorizationHandler) override {}
    bool supportsOnDeviceRecognition(const QString&) override { return true; }
    std::shared_ptr<platform::SpeechRequest> createRequest(const platform::SpeechRequestOptions&) override {
        return std::make_shared<Request>(samples_);
    }
    std::unique_ptr<platform::SpeechTask> startTask(std::shared_ptr<platform::SpeechRequest>,
                                                    HearingHandler whenHearing, ResultHandler) override {
        whenHearing();
        return std::make_unique<Task>();
    }

 private:
    class Request : public platform::SpeechRequest {
     public:
        explicit Request(std::atomic<std::size_t>& samples) : samples_(samples) {}
        void append(std::span<const std::int16_t> sound) override { samples_ += sound.size(); }
        void endAudio() override {}

     private:
        std::atomic<std::size_t>& samples_;
    };
    class Task : public platform::SpeechTask {
     public:
        void cancel() override {}
        void finish() override {}
    };

    std::atomic<std::size_t>& samples_;
};

template <typename Log>
struct DesktopGround {
    QTemporaryDir folder;  ///< of settings and files
    desktop::QtMainLoop loop;
    Log log;
    std::atomic<std::size_t> samples = 0;
};

/// The product's adapters on this desktop, all but the engine that recognises speech.
template <typename Log>
struct DesktopAdapters : DesktopGround<Log>, desktop::SessionAdapters {
    using Ground = DesktopGround<Log>;

    DesktopAdapters()
        : SessionAdapters(Ground::loop, Ground::log, desktop::openWindowingSystem(Ground::loop, Ground::log).value(),
                          {Ground::folder.path(), Ground::folder.path()},
                          {std::make_unique<NoEngine>(Ground::samples), std::chrono::seconds(5)}) {}
};

}  // namespace tavrelon::bench
