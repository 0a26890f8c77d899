#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <QList>
#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>

#include "desktop/linux/process/standard_output_log.h"
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
    log.line(QStringLiteral("a\u009b2J\u0085b\u2028c\u2029d\u202e\u2066e\u200f\u061c\ufeff \u200d👩"));
    EXPECT_EQ(pipe.read(), QByteArray("a\\x9b2J\\x85b\\x2028c\\x2029d\\x202e\\x2066e\\x200f\\x61c\\xfeff \u200d👩\n"));
    log.line(QString());
    EXPECT_EQ(pipe.read(), QByteArray("\n"));
}

TEST(StandardOutputLog, AReaderThatStalledOrWentHoldsNothingUp) {
    Pipe pipe;
    ASSERT_EQ(::fcntl(pipe.ends[0], F_SETFL, O_NONBLOCK), 0);
    StandardOutputLog log(pipe.writer());
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 500; ++i)  // far more than a pipe holds
        log.line(QString(9'000, u'x'));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    QByteArray all;
    const auto drain = [&] {
        for (auto part = pipe.read(); !part.isEmpty(); part = pipe.read())
            all += part;
    };
    drain();
    log.line(QStringLiteral("back"));
    drain();
    EXPECT_TRUE(all.endsWith("x\nback\n"));  // not glued to the part of a line before it
    pipe.closeReader();
    log.line(QStringLiteral("nobody hears this, and the process goes on"));
}

}  // namespace tavrelon::desktop
