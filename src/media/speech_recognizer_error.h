#pragma once

#include "text/localized_error.h"

namespace tavrelon::media {

/// Why a recording cannot start.
class SpeechRecognizerError : public text::LocalizedError {
 public:
    enum class Code {
        recognizerNotAvailable,
        speechNotAuthorized,
        microphoneNotAuthorized,
        microphoneUnavailable,
        requestCreationFailed
    };

    explicit SpeechRecognizerError(Code code) : LocalizedError(textOf(code)), code_(code) {}
    Code code() const { return code_; }

 private:
    static text::LocalizedText textOf(Code code);
    Code code_;
};

}  // namespace tavrelon::media
