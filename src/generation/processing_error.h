#pragma once

#include "text/localized_error.h"

namespace tavrelon::generation {

/// Why a request got no answer.
class ProcessingError : public text::LocalizedError {
 public:
    enum class Code {
        generationFailed,   ///< every model failed; the description ends with the last one's
        emptyInput,         ///< nothing was asked
        imeInputIncomplete  ///< declared for unfinished compositions; nothing raises it
    };

    static ProcessingError generationFailed(const QString& reason) {
        return {Code::generationFailed, QStringLiteral("Generation failed: ") + reason};
    }
    static ProcessingError emptyInput() { return {Code::emptyInput, QStringLiteral("Input is empty")}; }
    static ProcessingError imeInputIncomplete() {
        return {Code::imeInputIncomplete, QStringLiteral("请先完成中文输入后再触发")};
    }
    Code code() const { return code_; }

 private:
    ProcessingError(Code code, const QString& description) : LocalizedError(description), code_(code) {}
    Code code_;
};

}  // namespace tavrelon::generation
