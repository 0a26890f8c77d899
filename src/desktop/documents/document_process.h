#pragma once

#include <array>

#include "platform/document_reader.h"

/// What the program and its reader of foreign files have agreed on: the process is started with the name of a format
/// and an absolute path, or for HTML from a page and for a picture with the name alone and the content on its standard
/// input. It writes UTF-8 on its standard output: the text, or the reason why the file cannot be read; of a picture its
/// width and height, four bytes each, the lowest first, and its pixels as platform::Image has them.
namespace tavrelon::desktop::document_process {

inline constexpr QLatin1StringView pdf("pdf");
inline constexpr QLatin1StringView rtf("rtf");
inline constexpr QLatin1StringView html("html");
inline constexpr QLatin1StringView plain("plain");
inline constexpr QLatin1StringView markup("markup");
inline constexpr QLatin1StringView picture("picture");

inline constexpr qsizetype pictureHead = 8;  ///< bytes before the pixels

enum class Exit : int { Success = 0, Unsupported = 1, Unreadable = 2 };

inline QLatin1StringView nameOf(platform::DocumentFormat format) {
    static constexpr std::array names{pdf, rtf, html, plain};
    return names.at(static_cast<std::size_t>(format));
}

}  // namespace tavrelon::desktop::document_process
