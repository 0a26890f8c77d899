#include "desktop/linux/process/standard_output_log.h"

#include <poll.h>
#include <unistd.h>

#include <QList>
#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>

namespace tavrelon::desktop {

namespace {

constexpr int longestWaitMilliseconds = 50;

/// Whether a terminal or a viewer would end the line there, turn its order round or do something else than show it:
/// control characters of both sets, marks and overrides of the writing direction, separators of lines and paragraphs.
bool isSteering(char32_t c) {
    switch (QChar::category(c)) {
        case QChar::Other_Control:
            return c != U'\t';
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return true;
        case QChar::Other_Format:
            return c != 0x200C && c != 0x200D;  // they join letters and pictures, and hide nothing
        default:
            return false;
    }
}

}  // namespace

QByteArray escapedLine(const QString& text) {
    QString escaped;
    for (const char32_t c : text.toUcs4()) {
        if (c == U'\n')
            escaped += QStringLiteral("\\n");
        else if (c == U'\r')
            escaped += QStringLiteral("\\r");
        else if (isSteering(c))
            escaped += QStringLiteral("\\x%1").arg(static_cast<uint>(c), 2, 16, QChar(u'0'));
        else
            escaped += QChar::fromUcs4(c);
    }
    return escaped.toUtf8();
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
