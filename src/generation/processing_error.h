#pragma once

#include <cstdint>

#include "text/localized_error.h"

namespace tavrelon::generation {

/// A request that gave no result.
class ProcessingError : public text::LocalizedError {
 public:
    enum class Code : std::uint8_t { generationFailed, emptyInput, imeInputIncomplete };

    static ProcessingError generationFailed(const QString& reason) {
        return {Code::generationFailed, QStringLiteral("Generation failed: ") + reason};
    }
    static ProcessingError emptyInput() { return {Code::emptyInput, QStringLiteral("Input is empty")}; }
    static ProcessingError imeInputIncomplete() {
        return {Code::imeInputIncomplete, QStringLiteral("请先完成中文输入后再触发")};
    }

    Code code() const { return code_; }

 private:
    ProcessingError(Code code, QString description) : LocalizedError(std::move(description)), code_(code) {}

    Code code_;
};

}  // namespace tavrelon::generation
