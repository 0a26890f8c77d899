#include "learning/clone_error.h"

namespace tavrelon::learning {

using namespace Qt::StringLiterals;
using Code = CloneServiceError::Code;

namespace {

struct Texts {
    QString english;
    QString chinese;
};

Texts textsFor(Code code) {
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

QString messageFor(Code code, const QString& serverMessage, MessageLanguage language) {
    if (!serverMessage.isEmpty())
        return serverMessage;
    const auto texts = textsFor(code);
    return language == MessageLanguage::English ? texts.english : texts.chinese;
}

}  // namespace

CloneServiceError::CloneServiceError(Code code, qsizetype minimum, const QString& message)
    : LocalizedError(messageFor(code, message, MessageLanguage::English)),
      code_(code),
      minimum_(minimum),
      message_(message) {}

CloneServiceError::CloneServiceError(Code code) : CloneServiceError(code, 0, {}) {}

CloneServiceError CloneServiceError::contentTooShort(qsizetype minimum) {
    return {Code::contentTooShort, minimum, {}};
}

CloneServiceError CloneServiceError::serverError(const QString& message) {
    return {Code::serverError, 0, message};
}

QString cloneErrorMessage(const std::exception& error, MessageLanguage language) {
    if (const auto* known = dynamic_cast<const CloneServiceError*>(&error))
        return messageFor(known->code(), known->message(), language);
    return text::localizedDescription(error);
}

}  // namespace tavrelon::learning
