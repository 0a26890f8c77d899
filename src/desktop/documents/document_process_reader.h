#pragma once

#include <QStringList>

#include "async/main_loop.h"
#include "platform/document_reader.h"

namespace tavrelon::desktop {

/// Reads each document in a process of its own, which is ended when it takes too long, writes too much, or is no longer
/// wanted. The process bounds its memory by itself. At most one process for each reading under way.
class DocumentProcessReader : public platform::DocumentReader {
 public:
    static constexpr std::chrono::seconds timeLimit{30};

    /// `program` is the absolute path of tavrelon-document-reader.
    DocumentProcessReader(async::MainLoop& loop, QString program, std::chrono::milliseconds limit = timeLimit)
        : loop_(loop), program_(std::move(program)), limit_(limit) {}

    async::Task<Text> readFile(QString path, platform::DocumentFormat format) override;
    async::Task<Text> importHtml(QByteArray html) override;

 private:
    async::Task<Text> run(QStringList arguments, QByteArray input);

    async::MainLoop& loop_;
    QString program_;
    std::chrono::milliseconds limit_;
};

}  // namespace tavrelon::desktop
