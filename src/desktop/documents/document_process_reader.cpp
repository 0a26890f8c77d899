#include "desktop/documents/document_process_reader.h"

#include <QDir>
#include <QProcess>

#include "desktop/documents/document_process.h"

namespace tavrelon::desktop {

using platform::DocumentError;
using Text = platform::DocumentReader::Text;

namespace {

/// Bytes: no text of the cap takes more in UTF-8.
constexpr qint64 outputCap = 3 * qint64{platform::DocumentReader::textCap} + 1024;

Text failure(DocumentError::Code code, const QString& description) {
    return std::unexpected(DocumentError{code, description});
}

Text unsupported() {
    return failure(DocumentError::Code::Unsupported, QStringLiteral("The document could not be read."));
}

/// One process from its start to its end. Dropping it kills the process.
class Reading {
 public:
    using Done = std::move_only_function<void(Text)>;

    Reading(const QString& program, const QStringList& arguments, const QByteArray& input, Done done)
        : done_(std::move(done)) {
        QObject::connect(process_.get(), &QProcess::readyReadStandardOutput, process_.get(), [this] { collect(); });
        QObject::connect(process_.get(), &QProcess::errorOccurred, process_.get(),
                         [this](QProcess::ProcessError error) {
                             if (error == QProcess::FailedToStart)
                                 finish(unsupported());
                         });
        QObject::connect(process_.get(), &QProcess::finished, process_.get(),
                         [this](int code, QProcess::ExitStatus status) { ended(code, status); });
        process_->setStandardErrorFile(QProcess::nullDevice());
        process_->start(program, arguments);
        process_->write(input);
        process_->closeWriteChannel();
    }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    ~Reading() {
        process_->disconnect();
        process_->kill();
        // One that waits for a dead network drive ends when that answers, and until then nobody waits for it.
        if (process_->state() != QProcess::NotRunning && !process_->waitForFinished(100)) {
            auto* const left = process_.release();
            QObject::connect(left, &QProcess::finished, left, &QObject::deleteLater);
        }
    }

 private:
    void collect() {
        output_ += process_->readAllStandardOutput();
        if (output_.size() > outputCap) {
            process_->kill();
            finish(unsupported());
        }
    }

    void ended(int code, QProcess::ExitStatus status) {
        collect();
        if (status == QProcess::CrashExit)
            return finish(unsupported());
        switch (static_cast<document_process::Exit>(code)) {
            case document_process::Exit::Text:
                return finish(QString::fromUtf8(output_));
            case document_process::Exit::Unreadable:
                return finish(failure(DocumentError::Code::Unreadable, QString::fromUtf8(output_)));
            case document_process::Exit::Unsupported:
                break;
        }
        finish(unsupported());
    }

    void finish(Text text) {
        if (auto done = std::exchange(done_, nullptr))
            done(std::move(text));
    }

    std::unique_ptr<QProcess> process_ = std::make_unique<QProcess>();
    QByteArray output_;
    Done done_;
};

template <typename Wait>
async::Task<Text> awaited(Wait wait) {
    co_return co_await wait;
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
    const auto begin = [this, &arguments, &input](auto resolver) {
        return std::make_unique<Reading>(program_, arguments, input,
                                         [resolver](Text text) mutable { resolver.resolve(std::move(text)); });
    };
    try {
        co_return co_await async::raceWithDeadline(loop_, limit_, awaited(async::fromCallback<Text>(loop_, begin)));
    } catch (const async::DeadlineExceeded&) {
        co_return unsupported();
    }
}

}  // namespace tavrelon::desktop
