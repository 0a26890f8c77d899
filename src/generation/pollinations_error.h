#pragma once

#include <cstdint>

#include "platform/http_session.h"
#include "text/localized_error.h"

namespace tavrelon::generation {

/// A model call that failed, for a reason of the service or of its configuration.
class PollinationsError : public text::LocalizedError {
 public:
    enum class Code : std::uint8_t {
        configurationMissing,
        unsupportedImageInput,
        parseError,
        apiError,
        imageGenerationFailed,
        invalidURL,
        invalidPrompt,
        invalidResponse,
        invalidImageData,
        requestTimedOut,
        allModelsFailed,
    };

    static PollinationsError configurationMissing(const text::LocalizedText& text);
    static PollinationsError unsupportedImageInput(const text::LocalizedText& text);
    static PollinationsError parseError(const QString& text);
    static PollinationsError apiError(int status, const text::LocalizedText& text);
    static PollinationsError imageGenerationFailed(int status);
    static PollinationsError invalidURL();
    static PollinationsError invalidPrompt();
    static PollinationsError invalidResponse();
    static PollinationsError invalidImageData();
    static PollinationsError requestTimedOut();
    static PollinationsError allModelsFailed();

    Code code() const { return code_; }

    /// The HTTP status of `apiError` and `imageGenerationFailed`, else 0.
    int status() const { return status_; }

    /// What the case carries, in English, without the words that the description puts around it. Empty for cases
    /// without a text.
    const QString& text() const { return text_; }

 private:
    PollinationsError(Code code, text::LocalizedText description, QString text = {}, int status = 0);

    Code code_;
    int status_;
    QString text_;
};

/// A key that must not be sent as it is or to where it would go. It ends every walk over models: what would follow is a
/// service that the user did not choose, and only the user can mend it.
class KeyRefused : public text::LocalizedError {
 public:
    using LocalizedError::LocalizedError;
};

/// A request that got no answer. The description is the transport's own.
class TransportError : public text::LocalizedError {
 public:
    explicit TransportError(const platform::HttpError& error) : LocalizedError(error.description), code_(error.code) {}

    platform::HttpError::Code code() const { return code_; }

 private:
    platform::HttpError::Code code_;
};

/// Whether the same request would fail in the same way a moment later: after a refusal, a missing setting, a silence,
/// or where a model takes no pictures.
bool wouldFailAgain(const std::exception& error);

}  // namespace tavrelon::generation
