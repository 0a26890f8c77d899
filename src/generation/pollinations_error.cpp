#include "generation/pollinations_error.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;
using text::LocalizedText;

PollinationsError::PollinationsError(Code code, LocalizedText description, QString text, int status)
    : LocalizedError(std::move(description)), code_(code), status_(status), text_(std::move(text)) {}

PollinationsError PollinationsError::configurationMissing(const LocalizedText& text) {
    return {Code::configurationMissing, text, text.english};
}

PollinationsError PollinationsError::unsupportedImageInput(const LocalizedText& text) {
    return {Code::unsupportedImageInput, text, text.english};
}

PollinationsError PollinationsError::parseError(const QString& text) {
    return {Code::parseError, LocalizedText(u"Parse error: %1"_s, u"无法解析回答：%1"_s).arg(text), text};
}

PollinationsError PollinationsError::apiError(int status, const LocalizedText& text) {
    return {Code::apiError,
            LocalizedText(u"API error (%1): %2"_s, u"API 错误（%1）：%2"_s).arg(QString::number(status), text),
            text.english, status};
}

PollinationsError PollinationsError::imageGenerationFailed(int status) {
    return {Code::imageGenerationFailed,
            LocalizedText(u"Image generation failed with status %1"_s, u"图片生成失败，状态码 %1"_s)
                .arg(QString::number(status)),
            {},
            status};
}

PollinationsError PollinationsError::invalidURL() {
    return {Code::invalidURL, {u"Invalid URL"_s, u"地址无效"_s}};
}

PollinationsError PollinationsError::invalidPrompt() {
    return {Code::invalidPrompt, {u"Invalid prompt"_s, u"提示词无效"_s}};
}

PollinationsError PollinationsError::invalidResponse() {
    return {Code::invalidResponse, {u"Invalid response from server"_s, u"服务器响应无效"_s}};
}

PollinationsError PollinationsError::invalidImageData() {
    return {Code::invalidImageData, {u"Invalid image data received"_s, u"收到的图片数据无效"_s}};
}

PollinationsError PollinationsError::requestTimedOut() {
    return {Code::requestTimedOut, {u"Request timed out"_s, u"请求超时"_s}};
}

PollinationsError PollinationsError::allModelsFailed() {
    return {Code::allModelsFailed, {u"All models failed to process request"_s, u"所有模型均未能处理请求"_s}};
}

bool wouldFailAgain(const std::exception& error) {
    if (const auto* known = dynamic_cast<const PollinationsError*>(&error))
        return known->status() == 401 || known->status() == 403 || known->status() == 404 ||
               known->code() == PollinationsError::Code::configurationMissing ||
               known->code() == PollinationsError::Code::unsupportedImageInput ||
               known->code() == PollinationsError::Code::requestTimedOut;
    const auto* lost = dynamic_cast<const TransportError*>(&error);
    return dynamic_cast<const KeyRefused*>(&error) || (lost && lost->code() == platform::HttpError::Code::TimedOut);
}

}  // namespace tavrelon::generation
