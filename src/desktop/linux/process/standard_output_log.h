#pragma once

#include <QByteArray>
#include <mutex>

#include "platform/log.h"

namespace tavrelon::desktop {

/// Writes each line to standard output at once, as one unit. What would end a line, steer a terminal or turn the order
/// of the characters round is escaped, so that a window's title cannot forge a line. A reader that stops reading costs
/// one short wait and then the lines that it does not take; one that has gone costs nothing. Any thread.
class StandardOutputLog : public platform::Log {
 public:
    /// Writes to standard output, or to another open file, which stays the caller's. From now on a closed pipe no
    /// longer ends the process.
    StandardOutputLog();
    explicit StandardOutputLog(int fd);

    void line(const QString& text) override;

 private:
    bool isWritable();

    int fd_;
    std::mutex mutex_;      // guards the file and the fields below
    bool stalled_ = false;  // the reader did not take the last line in time
    bool torn_ = false;     // it took a part of it
};

/// The text with such characters escaped, as UTF-8.
QByteArray escapedLine(const QString& text);

}  // namespace tavrelon::desktop
