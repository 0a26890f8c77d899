#include "support/fake_document_reader.h"

#include <QRegularExpression>

namespace tavrelon::testing {

using platform::DocumentError;

namespace {

constexpr std::chrono::milliseconds readingTime{20};

platform::DocumentReader::Text unsupported() {
    return std::unexpected(DocumentError{DocumentError::Code::Unsupported, QStringLiteral("No document.")});
}

}  // namespace

void FakeDocumentReader::putUnsupported(const QString& path) {
    documents_.insert_or_assign(path, unsupported());
}

async::Task<FakeDocumentReader::Text> FakeDocumentReader::readFile(QString path, platform::DocumentFormat format) {
    files.emplace_back(path, format);
    co_await async::pause(loop_, readingTime);
    const auto found = documents_.find(path);
    if (found != documents_.end())
        co_return found->second;
    co_return std::unexpected(DocumentError{DocumentError::Code::Unreadable, path + QStringLiteral(": No such file")});
}

async::Task<FakeDocumentReader::Text> FakeDocumentReader::importHtml(QByteArray html) {
    markups << html;
    co_await async::pause(loop_, readingTime);
    if (refuseHtml)
        co_return unsupported();
    static const QRegularExpression tags(QStringLiteral("<[^>]*>"));
    co_return QString::fromUtf8(html).remove(tags).left(textCap);
}

}  // namespace tavrelon::testing
