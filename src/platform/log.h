#pragma once

#include <QString>

namespace tavrelon::platform {

/// Takes diagnostic lines. Production writes them to standard output, flushed line by line. Any thread.
class Log {
 public:
    virtual ~Log() = default;

    /// Writes one line. What the user typed, answers and keys never go here, nor how long they are.
    virtual void line(const QString& text) = 0;
};

}  // namespace tavrelon::platform
