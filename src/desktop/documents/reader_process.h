#pragma once

#include <QStringList>
#include <chrono>

#include "async/main_loop.h"
#include "async/task.h"
#include "desktop/documents/document_process.h"

namespace tavrelon::desktop {

/// What the process is asked and what it may cost.
struct ReaderTask {
    QString program;  ///< the absolute path of tavrelon-document-reader
    QStringList arguments;
    QByteArray input;
    qint64 outputCap = 0;  ///< bytes; more ends the process
    std::chrono::milliseconds limit{};
};

struct ReaderAnswer {
    document_process::Exit exit = document_process::Exit::Unsupported;
    QByteArray output;
};

/// Runs the reader of foreign files once, in an environment that tells it nothing of the user. What it does wrong, a
/// crash or too long a run included, is `Unsupported`. Main thread. Dropping the task ends the process.
async::Task<ReaderAnswer> runReader(async::MainLoop& loop, ReaderTask task);

}  // namespace tavrelon::desktop
