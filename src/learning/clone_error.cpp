#include "learning/clone_error.h"

namespace tavrelon::learning {

using namespace Qt::StringLiterals;
using Code = CloneServiceError::Code;

namespace {

text::LocalizedText textFor(Code code) {
    switch (code) {
        case Code::contentTooShort:
            return {u"Content must be at least 100 characters."_s, u"内容至少需要 100 个字符。"_s};
        case Code::invalidBaseURL:
            return {u"Set a valid API base URL."_s, u"请设置有效的 API 基础地址。"_s};
        case Code::unsupportedFile:
            return {u"Unsupported or unreadable file."_s, u"文件不支持或无法读取。"_s};
        case Code::serverError:
        case Code::invalidResponse:
            return {u"Invalid response from server."_s, u"服务器响应无效。"_s};
        case Code::missingLanguageStyle:
        case Code::missingSystemPrompt:
            return {u"System prompt not returned by server."_s, u"服务器未返回系统提示词。"_s};
        case Code::scrapeTimeout:
            return {u"Scrape timed out. Try again or use file/text instead."_s,
                    u"爬取超时，请重试或使用文件/文本学习。"_s};
    }
    return {};
}

}  // namespace

CloneServiceError::CloneServiceError(Code code, qsizetype minimum, const QString& message)
    : LocalizedError(message.isEmpty() ? textFor(code) : message), code_(code), minimum_(minimum), message_(message) {}

CloneServiceError::CloneServiceError(Code code) : CloneServiceError(code, 0, {}) {}

CloneServiceError CloneServiceError::contentTooShort(qsizetype minimum) {
    return {Code::contentTooShort, minimum, {}};
}

CloneServiceError CloneServiceError::serverError(const QString& message) {
    return {Code::serverError, 0, message};
}

}  // namespace tavrelon::learning
