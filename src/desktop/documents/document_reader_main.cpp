// Reads one document and writes its plain text. The program starts it for every document that a user hands over, since
// a document may be made to crash or exhaust its reader.
#include <sys/prctl.h>
#include <sys/resource.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <csignal>
#include <cstdio>
#include <memory>

#include "desktop/documents/document_process.h"
#include "desktop/documents/html_charset.h"
#include "desktop/documents/html_text.h"
#include "desktop/documents/pdf_text.h"
#include "desktop/documents/plain_text.h"
#include "desktop/documents/rtf_text.h"
#include "desktop/linux/posix_file_system.h"

namespace {

using namespace tavrelon;
using namespace tavrelon::desktop;
using document_process::Exit;

constexpr qsizetype textCap = platform::DocumentReader::textCap;

void limit(decltype(RLIMIT_CPU) resource, rlim_t value) {
    const rlimit bound{value, value};
    ::setrlimit(resource, &bound);
}

/// Nothing that a document does to its reader costs more than this, or writes a file, or outlives the program.
void boundThisProcess() {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    limit(RLIMIT_CORE, 0);
    ::signal(SIGXFSZ, SIG_IGN);  // a library that would write a cache shall merely fail to
    limit(RLIMIT_FSIZE, 0);
    limit(RLIMIT_CPU, 20);  // seconds
#if !__has_feature(address_sanitizer) && !__has_feature(thread_sanitizer)
    constexpr rlim_t gibibyte = rlim_t{1} << 30;  // of addresses, libraries included
    limit(RLIMIT_AS, gibibyte);
#endif
}

/// The HTML importer asks for fonts, wherever a page has code or measures in letters; the others need no desktop at
/// all.
std::unique_ptr<QCoreApplication> applicationFor(int& argc, char** argv) {
    const QLatin1StringView format(argc > 1 ? argv[1] : "");
    if (format != document_process::html && format != document_process::markup)
        return std::make_unique<QCoreApplication>(argc, argv);
    for (const char* contact : {"DBUS_SESSION_BUS_ADDRESS", "AT_SPI_BUS_ADDRESS", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON"})
        qunsetenv(contact);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return std::make_unique<QGuiApplication>(argc, argv);
}

Exit answer(Exit exit, const QString& text) {
    const auto utf8 = text.toUtf8();
    const auto size = static_cast<std::size_t>(utf8.size());
    const bool written = std::fwrite(utf8.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0;
    return written ? exit : Exit::Unsupported;
}

std::optional<QString> textOf(const QString& format, const QByteArray& bytes) {
    if (format == document_process::pdf)
        return pdfText(bytes, textCap);
    if (format == document_process::rtf)
        return rtfText(bytes, textCap);
    if (format == document_process::html)
        return htmlText(htmlMarkup(bytes));
    if (format == document_process::markup)
        return htmlText(QString::fromUtf8(bytes));
    return plainText(bytes);
}

std::expected<QByteArray, platform::FileError> input(const QStringList& arguments) {
    if (arguments.size() < 3) {
        QFile standardInput;
        if (!standardInput.open(stdin, QIODevice::ReadOnly))
            return std::unexpected(platform::FileError{standardInput.errorString()});
        return standardInput.readAll();
    }
    auto path = arguments[2];
    if (arguments[1] == document_process::rtf && QDir(path).exists())
        path += QStringLiteral("/TXT.rtf");
    return PosixFileSystem().read(path);
}

}  // namespace

int main(int argc, char** argv) {
    boundThisProcess();
    const auto application = applicationFor(argc, argv);
    const auto arguments = QCoreApplication::arguments();
    if (arguments.size() < 2) {
        std::fputs("tavrelon-document-reader: Tavrelon starts this program by itself\n", stderr);
        return static_cast<int>(Exit::Unsupported);
    }
    const auto bytes = input(arguments);
    if (!bytes)
        return static_cast<int>(answer(Exit::Unreadable, bytes.error().description));
    const auto text = textOf(arguments[1], *bytes);
    if (!text)
        return static_cast<int>(Exit::Unsupported);
    return static_cast<int>(answer(Exit::Text, text->first(std::min(textCap, text->size()))));
}
