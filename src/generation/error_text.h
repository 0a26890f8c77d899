#pragma once

#include "generation/pollinations_error.h"

/// What a service says of its failures, made fit for the user's eyes and for the log. Pure.
namespace tavrelon::generation::error_text {

/// The most characters of it that are told.
inline constexpr qsizetype longest = 200;

/// The text as one line: escapes of JSON are resolved, control and format characters gone. Still long, and with all
/// that the service repeated.
QString oneLine(const QString& text);

/// The text without what it repeats of `sent`, the document of the request, and cut to `longest`.
QString withoutEcho(const QString& text, const QByteArray& sent);

/// Reads an answer to `sent` by `read`. An error that the service told is thrown on without an echo.
template <typename Read>
auto readAnswer(const QByteArray& sent, const platform::HttpResponse& response, Read read) {
    try {
        return read(response);
    } catch (const PollinationsError& error) {
        if (error.code() != PollinationsError::Code::apiError)
            throw;
        throw PollinationsError::apiError(error.status(), withoutEcho(error.text(), sent));
    }
}

}  // namespace tavrelon::generation::error_text
