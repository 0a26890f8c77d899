#include "generation/pollinations_error.h"

namespace tavrelon::generation {

using namespace Qt::StringLiterals;

PollinationsError::PollinationsError(Code code, QString description, QString text, int status)
    : LocalizedError(std::move(description)), code_(code), status_(status), text_(std::move(text)) {}

PollinationsError PollinationsError::configurationMissing(const QString& text) {
    return {Code::configurationMissing, text, text};
}

PollinationsError PollinationsError::unsupportedImageInput(const QString& text) {
    return {Code::unsupportedImageInput, text, text};
}

PollinationsError PollinationsError::parseError(const QString& text) {
    return {Code::parseError, "Parse error: "_L1 + text, text};
}

PollinationsError PollinationsError::apiError(int status, const QString& text) {
    return {Code::apiError, "API error ("_L1 + QString::number(status) + "): "_L1 + text, text, status};
}

PollinationsError PollinationsError::imageGenerationFailed(int status) {
    return {
        Code::imageGenerationFailed, "Image generation failed with status "_L1 + QString::number(status), {}, status};
}

PollinationsError PollinationsError::invalidURL() {
    return {Code::invalidURL, u"Invalid URL"_s};
}

PollinationsError PollinationsError::invalidPrompt() {
    return {Code::invalidPrompt, u"Invalid prompt"_s};
}

PollinationsError PollinationsError::invalidResponse() {
    return {Code::invalidResponse, u"Invalid response from server"_s};
}

PollinationsError PollinationsError::invalidImageData() {
    return {Code::invalidImageData, u"Invalid image data received"_s};
}

PollinationsError PollinationsError::requestTimedOut() {
    return {Code::requestTimedOut, u"Request timed out"_s};
}

PollinationsError PollinationsError::allModelsFailed() {
    return {Code::allModelsFailed, u"All models failed to process request"_s};
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
