#include "desktop/documents/document_process_reader.h"

#include <QDir>

#include "desktop/documents/reader_process.h"

namespace tavrelon::desktop {

using document_process::Exit;
using platform::DocumentError;
using Text = platform::DocumentReader::Text;

namespace {

/// Bytes: no text of the cap takes more in UTF-8.
constexpr qint64 outputCap = 3 * qint64{platform::DocumentReader::textCap} + 1024;

Text failure(DocumentError::Code code, const QString& description) {
    return std::unexpected(DocumentError{code, description});
}

}  // namespace

async::Task<Text> DocumentProcessReader::readFile(QString path, platform::DocumentFormat format) {
    if (!QDir::isAbsolutePath(path) || path.contains(QChar::Null))
        co_return failure(DocumentError::Code::Unreadable, path + QStringLiteral(": The path is not absolute."));
    co_return co_await run({document_process::nameOf(format), QDir::cleanPath(path)}, {});
}

async::Task<Text> DocumentProcessReader::importHtml(QByteArray html) {
    return run({document_process::markup}, std::move(html));
}

async::Task<Text> DocumentProcessReader::run(QStringList arguments, QByteArray input) {
    const auto answer =
        co_await runReader(loop_, {program_, std::move(arguments), std::move(input), outputCap, limit_});
    switch (answer.exit) {
        case Exit::Success:
            co_return QString::fromUtf8(answer.output);
        case Exit::Unreadable:
            co_return failure(DocumentError::Code::Unreadable, QString::fromUtf8(answer.output));
        case Exit::Unsupported:
            break;
    }
    co_return failure(DocumentError::Code::Unsupported, QStringLiteral("The document could not be read."));
}

}  // namespace tavrelon::desktop
