#pragma once

#include <cstdint>

#include "text/localized_error.h"

namespace tavrelon::generation {

/// A request that gave no result.
class ProcessingError : public text::LocalizedError {
 public:
    enum class Code : std::uint8_t { generationFailed, emptyInput, imeInputIncomplete, unseenInput };

    /// Whether the same request may succeed a moment later.
    enum class Again : std::uint8_t { Worthwhile, Futile };

    static ProcessingError generationFailed(const QString& reason, Again again = Again::Worthwhile) {
        return {Code::generationFailed, QStringLiteral("Generation failed: ") + reason, again};
    }
    static ProcessingError emptyInput() { return {Code::emptyInput, QStringLiteral("Input is empty")}; }
    static ProcessingError imeInputIncomplete() {
        return {Code::imeInputIncomplete, QStringLiteral("请先完成中文输入后再触发")};
    }

    static ProcessingError unseenInput() {
        return {Code::unseenInput,
                QStringLiteral("读不到输入：请选中文字或用输入框。Nothing seen: select the text, or use "
                               "the prompt box.")};
    }

    Code code() const { return code_; }
    bool isWorthAnotherTry() const { return code_ == Code::generationFailed && again_ == Again::Worthwhile; }

 private:
    ProcessingError(Code code, QString description, Again again = Again::Futile)
        : LocalizedError(std::move(description)), code_(code), again_(again) {}

    Code code_;
    Again again_;
};

}  // namespace tavrelon::generation
