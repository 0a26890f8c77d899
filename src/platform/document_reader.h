#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <expected>

#include "async/task.h"

namespace tavrelon::platform {

enum class DocumentFormat : std::uint8_t { Pdf, Rtf, Html, PlainText };

struct DocumentError {
    enum class Code : std::uint8_t {
        Unsupported,  ///< no document of its format, locked, or too much for the bounds of memory and time
        Unreadable,   ///< the file itself could not be read
    };

    Code code = Code::Unsupported;
    QString description;  ///< for the user
};

/// Gives the plain text of documents, which may be hostile: a reading is bounded in memory and time, follows no link
/// out of the document, and its crash or hang is an error like another. Main thread. A dropped task ends the reading.
class DocumentReader {
 public:
    /// UTF-16 units; a text is cut there.
    static constexpr qsizetype textCap = 1 << 20;

    using Text = std::expected<QString, DocumentError>;

    virtual ~DocumentReader() = default;

    /// The text of the file. An RTF document may be a folder that holds its text and pictures.
    virtual async::Task<Text> readFile(QString path, DocumentFormat format) = 0;

    /// The text of an HTML document: in the encoding of its byte order mark, else in the one that it names itself, else
    /// in UTF-8 if it is that, else in Windows code page 1252.
    virtual async::Task<Text> importHtml(QByteArray html) = 0;
};

}  // namespace tavrelon::platform
