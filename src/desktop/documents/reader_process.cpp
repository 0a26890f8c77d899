#include "desktop/documents/reader_process.h"

#include <QProcess>

#include "async/waits.h"

namespace tavrelon::desktop {

using document_process::Exit;

namespace {

/// One process from its start to its end. Dropping it kills the process.
class Reading {
 public:
    using Done = std::move_only_function<void(ReaderAnswer)>;

    Reading(const ReaderTask& task, Done done) : outputCap_(task.outputCap), done_(std::move(done)) {
        QObject::connect(process_.get(), &QProcess::readyReadStandardOutput, process_.get(), [this] { collect(); });
        QObject::connect(process_.get(), &QProcess::errorOccurred, process_.get(),
                         [this](QProcess::ProcessError error) {
                             if (error == QProcess::FailedToStart)
                                 finish({});
                         });
        QObject::connect(process_.get(), &QProcess::finished, process_.get(),
                         [this](int code, QProcess::ExitStatus status) { ended(code, status); });
        process_->setStandardErrorFile(QProcess::nullDevice());
        QProcessEnvironment environment;  // one without any entry would be the user's
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        process_->setProcessEnvironment(environment);
        process_->start(task.program, task.arguments);
        process_->write(task.input);
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
        if (output_.size() > outputCap_) {
            process_->kill();
            finish({});
        }
    }

    void ended(int code, QProcess::ExitStatus status) {
        collect();
        const auto exit = static_cast<Exit>(code);
        const bool hasOutput = exit == Exit::Success || exit == Exit::Unreadable;
        if (status == QProcess::NormalExit && hasOutput)
            finish({exit, std::move(output_)});
        else
            finish({});
    }

    void finish(ReaderAnswer answer) {
        if (auto done = std::exchange(done_, nullptr))
            done(std::move(answer));
    }

    std::unique_ptr<QProcess> process_ = std::make_unique<QProcess>();
    qint64 outputCap_;
    QByteArray output_;
    Done done_;
};

template <typename Wait>
async::Task<ReaderAnswer> awaited(Wait wait) {
    co_return co_await wait;
}

}  // namespace

async::Task<ReaderAnswer> runReader(async::MainLoop& loop, ReaderTask task) {
    const auto begin = [&task](auto resolver) {
        return std::make_unique<Reading>(
            task, [resolver](ReaderAnswer answer) mutable { resolver.resolve(std::move(answer)); });
    };
    try {
        co_return co_await async::raceWithDeadline(loop, task.limit,
                                                   awaited(async::fromCallback<ReaderAnswer>(loop, begin)));
    } catch (const async::DeadlineExceeded&) {
        co_return ReaderAnswer();
    }
}

}  // namespace tavrelon::desktop
