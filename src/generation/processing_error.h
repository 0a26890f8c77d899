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

    static ProcessingError generationFailed(const text::LocalizedText& reason, Again again = Again::Worthwhile) {
        const text::LocalizedText frame(QStringLiteral("Generation failed: %1"), QStringLiteral("生成失败：%1"));
        return {Code::generationFailed, frame.arg(reason), again};
    }
    static ProcessingError emptyInput() {
        return {Code::emptyInput, {QStringLiteral("Input is empty"), QStringLiteral("输入为空")}};
    }
    static ProcessingError imeInputIncomplete() {
        return {Code::imeInputIncomplete,
                {QStringLiteral("Finish what the input method is composing, then press again"),
                 QStringLiteral("请先完成中文输入后再触发")}};
    }

    static ProcessingError unseenInput() {
        return {Code::unseenInput,
                {QStringLiteral("Nothing seen: select the text, or use the prompt box."),
                 QStringLiteral("读不到输入：请选中文字或用输入框。")}};
    }

    Code code() const { return code_; }
    bool isWorthAnotherTry() const { return code_ == Code::generationFailed && again_ == Again::Worthwhile; }

 private:
    ProcessingError(Code code, text::LocalizedText description, Again again = Again::Futile)
        : LocalizedError(std::move(description)), code_(code), again_(again) {}

    Code code_;
    Again again_;
};

}  // namespace tavrelon::generation
