// Reads one foreign file and writes its plain text or its pixels. The program starts it for every document that a user
// hands over and every picture that a service sends, since such a file may be made to crash, exhaust or take over its
// reader.
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <QStringConverter>
#include <QtEndian>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "desktop/documents/confinement.h"
#include "desktop/documents/document_process.h"
#include "desktop/documents/html_charset.h"
#include "desktop/documents/html_text.h"
#include "desktop/documents/pdf_text.h"
#include "desktop/documents/picture_pixels.h"
#include "desktop/documents/plain_text.h"
#include "desktop/documents/rtf_text.h"
#include "desktop/linux/files/posix_file_system.h"

namespace {

using namespace tavrelon;
using namespace tavrelon::desktop;
using document_process::Exit;

constexpr qsizetype textCap = platform::DocumentReader::textCap;

/// Parts of the libraries that are loaded when needed, and fonts. Nothing of a user lies there.
QList<QByteArray> readableFolders() {
    return {"/usr",
            "/lib",
            "/lib64",
            "/etc/ld.so.cache",
            "/etc/fonts",
            "/var/cache/fontconfig",
            QFile::encodeName(QLibraryInfo::path(QLibraryInfo::PrefixPath))};
}

/// The HTML importer asks for fonts, wherever a page has code or measures in letters; the others need no desktop at
/// all.
std::unique_ptr<QCoreApplication> applicationFor(const QString& format, int& argc, char** argv) {
    if (format != document_process::html && format != document_process::markup)
        return std::make_unique<QCoreApplication>(argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return std::make_unique<QGuiApplication>(argc, argv);
}

bool isWritten(QByteArrayView bytes) {
    const auto size = static_cast<std::size_t>(bytes.size());
    return std::fwrite(bytes.data(), 1, size, stdout) == size && std::fflush(stdout) == 0;
}

Exit answer(Exit exit, const QString& text) {
    return isWritten(text.toUtf8()) ? exit : Exit::Unsupported;
}

Exit answerWithPixels(const QByteArray& picture) {
    const auto pixels = picturePixels(picture);
    if (pixels.isNull())
        return Exit::Unsupported;
    std::array<char, document_process::pictureHead> head{};
    qToLittleEndian(static_cast<quint32>(pixels.width()), head.data());
    qToLittleEndian(static_cast<quint32>(pixels.height()), head.data() + 4);
    // Rows of four-byte pixels have no gaps.
    const QByteArrayView rows(pixels.constBits(), pixels.sizeInBytes());
    return isWritten(head) && isWritten(rows) ? Exit::Success : Exit::Unsupported;
}

std::optional<QString> textOf(const QString& format, const QByteArray& bytes) {
    if (format == document_process::pdf)
        return pdfText(bytes, textCap);
    if (format == document_process::rtf)
        return rtfText(bytes, textCap);
    if (format == document_process::html || format == document_process::markup)
        return htmlText(htmlMarkup(bytes));
    return plainText(bytes);
}

/// What a file holds that is named as RTF: some programs save pages or plain text under that name.
QString formatWithin(const QString& format, QByteArrayView bytes) {
    const auto head = bytes.first(std::min<qsizetype>(1024, bytes.size())).toByteArray().toLower();
    if (format != document_process::rtf || head.contains("{\\rtf"))
        return format;
    if (head.contains("<html") || head.contains("<!doctype html"))
        return document_process::html;
    const bool isText = !bytes.contains('\0') || QStringConverter::encodingForData(bytes);
    return isText ? document_process::plain : format;
}

std::expected<QByteArray, platform::FileError> fileContent(const QString& format, QString path) {
    if (format == document_process::rtf && QDir(path).exists())
        path += QStringLiteral("/TXT.rtf");
    return PosixFileSystem().read(path);
}

QByteArray standardInput() {
    QFile file;
    return file.open(stdin, QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

Exit read(const QString& format, const QByteArray& bytes) {
    if (format == document_process::picture)
        return answerWithPixels(bytes);
    const auto text = textOf(format, bytes);
    return text ? answer(Exit::Success, text->first(std::min(textCap, text->size()))) : Exit::Unsupported;
}

/// The file is opened while this process may still do so, and looked into when it may do nothing else.
Exit run(int argc, char** argv) {
    auto format = QFile::decodeName(argv[1]);
    const bool isFile = argc > 2;
    const auto content = isFile ? fileContent(format, QFile::decodeName(argv[2])) : QByteArray();
    confineThisProcess(readableFolders());
    if (!content)
        return answer(Exit::Unreadable, content.error().description);
    format = formatWithin(format, *content);
    const auto application = applicationFor(format, argc, argv);
    return read(format, isFile ? *content : standardInput());
}

}  // namespace

int main(int argc, char** argv) {
    boundThisProcess();
    if (argc < 2) {
        std::fputs("tavrelon-document-reader: Tavrelon starts this program by itself\n", stderr);
        return static_cast<int>(Exit::Unsupported);
    }
    // Nothing is torn down in an orderly way: the file may have broken what that would run through.
    std::_Exit(static_cast<int>(run(argc, argv)));
}
