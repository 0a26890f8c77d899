#pragma once

#include <memory>
#include <utility>

#include "platform/speech.h"

namespace tavrelon::testing {

/// A recogniser that understands what a test says. Tests change the members at any time.
class FakeSpeech : public platform::Speech {
    struct Recognition {
        HearingHandler whenHearing;
        ResultHandler handler;
        bool over = false;
    };

 public:
    class Request : public platform::SpeechRequest {
     public:
        std::size_t samples = 0;
        bool ended = false;
        void append(std::span<const std::int16_t> sound) override { samples += ended ? 0 : sound.size(); }
        void endAudio() override { ended = true; }
    };

    bool available = true;
    QStringList installed{QStringLiteral("zh-CN")};
    bool canMakeRequests = true;
    platform::AuthorizationStatus status = platform::AuthorizationStatus::Authorized;
    AuthorizationHandler asked;              ///< the question that the user has yet to answer
    platform::SpeechRequestOptions options;  ///< of the newest request
    std::shared_ptr<Request> request;        ///< the newest
    int cancelled = 0, finished = 0;
    bool loadsLate = false;     ///< otherwise it hears at once
    bool finishesLate = false;  ///< otherwise what was heard is final as soon as it is asked to finish

    /// What the newest task reports; nothing once it is over.
    void hear(const QString& text) {
        heard_ = text;
        report(platform::SpeechResult{text, false}, false);
    }
    void hearFinally(const QString& text) { report(platform::SpeechResult{text, true}, true); }
    void fail(bool isUnavailable = false) {
        report(std::unexpected(platform::SpeechError{QStringLiteral("It broke."), isUnavailable}), true);
    }

    bool isAvailable(const QString& locale) override { return available && installed.contains(locale); }
    QStringList locales() override { return installed; }
    platform::AuthorizationStatus authorizationStatus() override { return status; }
    void requestAuthorization(AuthorizationHandler completion) override { asked = std::move(completion); }
    bool supportsOnDeviceRecognition(const QString&) override { return true; }
    std::shared_ptr<platform::SpeechRequest> createRequest(const platform::SpeechRequestOptions& wanted) override {
        options = wanted;
        request = canMakeRequests ? std::make_shared<Request>() : nullptr;
        return request;
    }
    void load() { recognition_->whenHearing(); }
    std::unique_ptr<platform::SpeechTask> startTask(std::shared_ptr<platform::SpeechRequest>,
                                                    HearingHandler whenHearing, ResultHandler handler) override {
        recognition_ = std::make_shared<Recognition>(std::move(whenHearing), std::move(handler));
        heard_.clear();
        if (!loadsLate)
            load();
        return std::make_unique<Task>(*this, recognition_);
    }

 private:
    class Task : public platform::SpeechTask {
     public:
        Task(FakeSpeech& owner, std::shared_ptr<Recognition> recognition)
            : owner_(owner), recognition_(std::move(recognition)) {}
        ~Task() override { recognition_->over = true; }
        void cancel() override {
            recognition_->over = true;
            ++owner_.cancelled;
        }
        void finish() override {
            ++owner_.finished;
            if (const auto text = owner_.heard_.trimmed(); !text.isEmpty() && !owner_.finishesLate)
                owner_.hearFinally(text);
        }

     private:
        FakeSpeech& owner_;
        std::shared_ptr<Recognition> recognition_;
    };

    void report(std::expected<platform::SpeechResult, platform::SpeechError> outcome, bool isLast) {
        const auto recognition = recognition_;
        if (recognition && !std::exchange(recognition->over, recognition->over || isLast))
            recognition->handler(std::move(outcome));
    }

    std::shared_ptr<Recognition> recognition_;
    QString heard_;
};

}  // namespace tavrelon::testing
