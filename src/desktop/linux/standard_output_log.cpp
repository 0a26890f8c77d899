#include "desktop/linux/standard_output_log.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>

namespace tavrelon::desktop {

namespace {

constexpr int longestWaitMilliseconds = 50;

}  // namespace

QByteArray escapedLine(const QString& text) {
    QByteArray escaped;
    for (const char byte : text.toUtf8()) {
        const auto code = static_cast<unsigned char>(byte);
        if (byte == '\n')
            escaped += "\\n";
        else if (byte == '\r')
            escaped += "\\r";
        else if ((code < 0x20 && byte != '\t') || code == 0x7F)
            escaped += "\\x" + QByteArray::number(code, 16).rightJustified(2, '0');
        else
            escaped += byte;
    }
    return escaped;
}

StandardOutputLog::StandardOutputLog() : StandardOutputLog(STDOUT_FILENO) {}

StandardOutputLog::StandardOutputLog(int fd) : fd_(fd) {
    std::signal(SIGPIPE, SIG_IGN);
}

bool StandardOutputLog::isWritable() {
    pollfd state{.fd = fd_, .events = POLLOUT, .revents = 0};
    const int ready = ::poll(&state, 1, stalled_ ? 0 : longestWaitMilliseconds);
    stalled_ = ready == 0;
    return ready > 0;
}

void StandardOutputLog::line(const QString& text) {
    auto bytes = escapedLine(text) + '\n';
    const std::lock_guard lock(mutex_);
    if (torn_)
        bytes.prepend('\n');
    qsizetype written = 0;
    while (written < bytes.size() && isWritable()) {
        // A pipe that is writable takes this much at once and without a wait.
        const auto piece = std::min<qsizetype>(bytes.size() - written, PIPE_BUF);
        const auto count = ::write(fd_, bytes.constData() + written, static_cast<std::size_t>(piece));
        if (count < 0 && errno != EINTR)
            break;
        written += std::max<qsizetype>(count, 0);
    }
    if (written > 0)
        torn_ = written < bytes.size();
}

}  // namespace tavrelon::desktop
