#pragma once

#include <QStringList>
#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <span>

#include "platform/authorization_status.h"

namespace tavrelon::platform {

/// The whole of what was understood so far.
struct SpeechResult {
    QString formattedString;
    bool isFinal = false;
    bool operator==(const SpeechResult&) const = default;
};

struct SpeechError {
    QString description;         ///< for the log
    bool isUnavailable = false;  ///< nothing can be recognised until the user has installed something else
};

enum class SpeechTaskHint { Unspecified = 0, Dictation = 1 };

struct SpeechRequestOptions {
    QString locale;  ///< as "zh-CN"
    bool reportsPartialResults = false;
    SpeechTaskHint taskHint = SpeechTaskHint::Unspecified;
    bool requiresOnDeviceRecognition = false;
};

/// Sound on its way to a recogniser. Any thread; both operations return at once.
class SpeechRequest {
 public:
    virtual ~SpeechRequest() = default;

    /// More of the sound, as `AudioTap::buffer` gives it. What comes after `endAudio` is dropped.
    virtual void append(std::span<const std::int16_t> samples) = 0;

    /// Nothing follows, so that a final result can be made of what is there.
    virtual void endAudio() = 0;
};

/// A recognition under way. Main thread; both operations return at once. Its end cancels the recognition.
class SpeechTask {
 public:
    virtual ~SpeechTask() = default;

    /// Drops everything; what is reported hence, if anything, means nothing.
    virtual void cancel() = 0;

    /// Ends with a final result for what was appended until now.
    virtual void finish() = 0;
};

/// Makes text of speech while it is spoken. Main thread, except that results come on the recogniser's own.
class Speech {
 public:
    using ResultHandler = std::function<void(std::expected<SpeechResult, SpeechError>)>;
    using HearingHandler = std::function<void()>;
    using AuthorizationHandler = std::function<void(AuthorizationStatus)>;

    virtual ~Speech() = default;

    /// Of the recognisers that are installed, as "zh-CN", in alphabetical order.
    virtual QStringList locales() = 0;

    /// Whether a recogniser for this locale is there and, as far as is known, can work.
    virtual bool isAvailable(const QString& locale) = 0;

    virtual AuthorizationStatus authorizationStatus() = 0;

    /// Asks the user; `completion` runs on the main thread, later.
    virtual void requestAuthorization(AuthorizationHandler completion) = 0;

    virtual bool supportsOnDeviceRecognition(const QString& locale) = 0;

    /// Null when there can be none.
    virtual std::shared_ptr<SpeechRequest> createRequest(const SpeechRequestOptions& options) = 0;

    /// Recognises what is appended to `request`, which this port made. `whenHearing` is called once, before any result,
    /// when what is spoken begins to be understood, which may take seconds; the sound until then is kept. `handler`
    /// gets partial results, each unlike the one before, and then either one final result or one error. A request
    /// without sound is an error in the end.
    virtual std::unique_ptr<SpeechTask> startTask(std::shared_ptr<SpeechRequest> request, HearingHandler whenHearing,
                                                  ResultHandler handler) = 0;
};

}  // namespace tavrelon::platform
