#include <gtest/gtest.h>

#include <QElapsedTimer>

#include "desktop/qt/qt_main_loop.h"
#include "desktop/tools.h"
#include "desktop/wayland/clipboard/wayland_pasteboard.h"
#include "desktop/wayland/keys/wayland_key_poster.h"
#include "support/recording_log.h"
#include "support/run_task_on_qt.h"

namespace tavrelon::desktop {
namespace {

using namespace std::chrono_literals;
using testing::outputOf;
using testing::runQtUntil;
using testing::runTaskOnQt;

const QString utf8 = QStringLiteral("text/plain;charset=utf-8");

/// Another program that holds the clipboard.
class Owner {
 public:
    Owner(const QString& type, const QByteArray& bytes) {
        process_.start(QStringLiteral("wl-copy"), {QStringLiteral("--foreground"), QStringLiteral("-t"), type});
        process_.write(bytes);
        process_.closeWriteChannel();
        process_.waitForStarted();
    }
    ~Owner() {
        process_.kill();
        process_.waitForFinished();
    }
    void freeze() { ::kill(static_cast<pid_t>(process_.processId()), SIGSTOP); }

 private:
    QProcess process_;
};

QByteArray pasted(const QString& type) {
    return outputOf(QStringLiteral("wl-paste"), {QStringLiteral("-n"), QStringLiteral("-t"), type});
}

class WaylandPasteboardTest : public ::testing::Test {
 protected:
    template <typename T>
    static T opened(std::expected<T, QString> part) {
        if (!part)
            throw std::runtime_error(part.error().toStdString());
        return *std::move(part);
    }

    QtMainLoop loop_;
    testing::RecordingLog log_;
    std::unique_ptr<WaylandConnection> connection_ = opened(WaylandConnection::open());
    std::unique_ptr<WaylandKeyPoster> keys_ = opened(WaylandKeyPoster::open(*connection_, nullptr));
    std::unique_ptr<WaylandPasteboard> pasteboard_ = opened(WaylandPasteboard::create(
        loop_, log_, *connection_, keys_->presses(), {.silence = 300ms, .total = 1000ms, .bytes = 8 << 20}));
};

TEST_F(WaylandPasteboardTest, WhatWePutThereIsServedWholeWhileTheMainThreadIsBusy) {
    const auto before = pasteboard_->changeCount();
    const QString text = QStringLiteral("界\n").repeated(700'000);
    ASSERT_TRUE(pasteboard_->setString(text));
    EXPECT_EQ(pasteboard_->changeCount(), before + 1);
    EXPECT_EQ(pasted(utf8), text.toUtf8());
    EXPECT_FALSE(pasteboard_->wasFetched()) << "nobody had been asked to paste";
    keys_->press(keys::keyV, keys::commandFlag);
    pasted(utf8);
    EXPECT_TRUE(pasteboard_->wasFetched());
    EXPECT_EQ(runTaskOnQt(loop_, pasteboard_->string()), text);
}

TEST_F(WaylandPasteboardTest, APictureOfAnotherProgramIsReadAndGivenBack) {
    const QByteArray picture = QByteArray("\x89PNG\0", 5).repeated(200'000);
    const auto before = pasteboard_->changeCount();
    const Owner owner(QStringLiteral("image/png"), picture);
    ASSERT_TRUE(runQtUntil([&] { return pasteboard_->changeCount() > before; }));
    EXPECT_EQ(runTaskOnQt(loop_, pasteboard_->string()), std::nullopt);
    auto kept = runTaskOnQt(loop_, pasteboard_->items());
    ASSERT_TRUE(kept);
    ASSERT_TRUE(pasteboard_->setString(QStringLiteral("answer")));
    ASSERT_TRUE(pasteboard_->writeItems(*std::move(kept)));
    EXPECT_EQ(pasted(QStringLiteral("image/png")), picture);
    pasteboard_->clearContents();
    EXPECT_TRUE(runTaskOnQt(loop_, pasteboard_->items())->empty());
}

TEST_F(WaylandPasteboardTest, AnOwnerThatHangsOrSendsTooMuchCostsABoundedWait) {
    const auto before = pasteboard_->changeCount();
    Owner hung(utf8, "text");
    ASSERT_TRUE(runQtUntil([&] { return pasteboard_->changeCount() > before; }));
    hung.freeze();
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(runTaskOnQt(loop_, pasteboard_->items()).error(), platform::PasteboardError::TimedOut);
    EXPECT_LT(clock.elapsed(), 5000);
    const Owner large(utf8, QByteArray(9 << 20, 'x'));
    ASSERT_TRUE(runQtUntil([&] { return pasteboard_->changeCount() > before + 1; }));
    EXPECT_EQ(runTaskOnQt(loop_, pasteboard_->items()).error(), platform::PasteboardError::TooLarge);
    EXPECT_TRUE(pasteboard_->setString(QStringLiteral("and well")));
    EXPECT_EQ(pasted(utf8), "and well");
}

}  // namespace
}  // namespace tavrelon::desktop
