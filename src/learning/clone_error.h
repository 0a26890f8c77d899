#pragma once

#include <cstdint>

#include "text/localized_error.h"

namespace tavrelon::learning {

/// Why no profile was learned.
class CloneServiceError : public text::LocalizedError {
 public:
    enum class Code : std::uint8_t {
        contentTooShort,
        serverError,
        invalidBaseURL,
        unsupportedFile,
        invalidResponse,
        missingLanguageStyle,
        missingSystemPrompt,
        scrapeTimeout,
    };

    /// For the cases that carry nothing.
    explicit CloneServiceError(Code code);

    /// `minimum` is a count of characters.
    static CloneServiceError contentTooShort(qsizetype minimum);

    /// `message` is the server's own; the user reads it as it stands.
    static CloneServiceError serverError(const QString& message);

    Code code() const { return code_; }
    qsizetype minimum() const { return minimum_; }
    const QString& message() const { return message_; }

 private:
    CloneServiceError(Code code, qsizetype minimum, const QString& message);

    Code code_;
    qsizetype minimum_ = 0;
    QString message_;
};

}  // namespace tavrelon::learning
