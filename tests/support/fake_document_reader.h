#pragma once

#include <QStringList>
#include <map>

#include "async/waits.h"
#include "platform/document_reader.h"

namespace tavrelon::testing {

/// Reads the documents that it was given, on the time of its main loop, and keeps what it was asked.
class FakeDocumentReader : public platform::DocumentReader {
 public:
    explicit FakeDocumentReader(async::MainLoop& loop) : loop_(loop) {}

    void put(const QString& path, const QString& text) { documents_.insert_or_assign(path, text.left(textCap)); }
    void putUnsupported(const QString& path);

    /// Lets every import of HTML fail.
    bool refuseHtml = false;

    /// The path and the format of each reading of a file, and the markup of each import.
    std::vector<std::pair<QString, platform::DocumentFormat>> files;
    QList<QByteArray> markups;

    async::Task<Text> readFile(QString path, platform::DocumentFormat format) override;

    /// What stands between the tags.
    async::Task<Text> importHtml(QByteArray html) override;

 private:
    async::MainLoop& loop_;
    std::map<QString, Text> documents_;
};

}  // namespace tavrelon::testing
