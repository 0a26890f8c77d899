#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <QList>
#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

#include "desktop/linux/standard_output_log.h"
#include "support/qt_gtest.h"

namespace tavrelon::desktop {

namespace {

struct Pipe {
    Pipe() {
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
    }
    ~Pipe() {
        closeReader();
        ::close(ends[1]);
    }
    void closeReader() {
        if (ends[0] >= 0)
            ::close(std::exchange(ends[0], -1));
    }
    /// What one read gives.
    QByteArray read() const {
        QByteArray content(65536, '\0');
        content.resize(std::max<qsizetype>(0, ::read(ends[0], content.data(), 65536)));
        return content;
    }
    int writer() const { return ends[1]; }
    std::array<int, 2> ends{-1, -1};
};

}  // namespace

TEST(StandardOutputLog, WritesEachLineAtOnceAndEscapesControlCharacters) {
    const Pipe pipe;
    StandardOutputLog log(pipe.writer());
    log.line(QStringLiteral("[Hotkey] 好 \ta\\b"));
    EXPECT_EQ(pipe.read(), QByteArray("[Hotkey] 好 \ta\\b\n"));
    log.line(QStringLiteral("a\r\nFailed to b\n\x1b[2J\x7f"));
    EXPECT_EQ(pipe.read(), QByteArray("a\\r\\nFailed to b\\n\\x1b[2J\\x7f\n"));
    log.line(QString());
    EXPECT_EQ(pipe.read(), QByteArray("\n"));
}

TEST(StandardOutputLog, LinesOfManyThreadsStayWhole) {
    constexpr int threads = 4;
    constexpr int linesEach = 20;
    const Pipe pipe;
    ASSERT_GE(::fcntl(pipe.writer(), F_SETPIPE_SZ, 1 << 20), 1 << 20);  // room for all of it
    StandardOutputLog log(pipe.writer());
    {
        std::vector<std::jthread> writers;
        for (int i = 0; i < threads; ++i)
            writers.emplace_back([&log, letter = static_cast<char16_t>(u'a' + i)] {
                for (int line = 0; line < linesEach; ++line)
                    log.line(QString(9'000, letter));  // more than the system writes as one unit
            });
    }
    QByteArray all;
    while (all.size() < threads * linesEach * 9'001)
        all += pipe.read();
    for (const auto& line : all.trimmed().split('\n'))
        ASSERT_EQ(line, QByteArray(9'000, line.at(0)));
}

TEST(StandardOutputLog, AReaderThatStalledOrWentHoldsNothingUp) {
    Pipe pipe;
    ASSERT_EQ(::fcntl(pipe.ends[0], F_SETFL, O_NONBLOCK), 0);
    StandardOutputLog log(pipe.writer());
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 500; ++i)  // far more than a pipe holds
        log.line(QString(9'000, u'x'));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    while (!pipe.read().isEmpty()) {
    }
    log.line(QStringLiteral("back"));
    EXPECT_EQ(pipe.read().trimmed(), "back");  // not glued to the part of a line before it
    pipe.closeReader();
    log.line(QStringLiteral("nobody hears this, and the process goes on"));
}

}  // namespace tavrelon::desktop
