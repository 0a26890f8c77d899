#include "desktop/linux/process/process_launcher.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <QFile>
#include <QTemporaryDir>

#include "support/waiting.h"

namespace tavrelon::desktop {

TEST(ProcessLauncher, AStartedProgramGetsTheSignalsThatThisOneHoldsBack) {
    const QTemporaryDir folder;
    QFile mask(folder.filePath(QStringLiteral("mask")));
    sigset_t termination;
    sigset_t before;
    sigemptyset(&termination);
    sigaddset(&termination, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &termination, &before);
    const bool started = startProgram(
        QStringLiteral("sh"),
        {QStringLiteral("-c"), QStringLiteral("grep SigBlk /proc/self/status >\"$0.part\" && mv \"$0.part\" \"$0\""),
         mask.fileName()});
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    ASSERT_TRUE(started);
    ASSERT_TRUE(testing::eventually([&] { return mask.open(QIODevice::ReadOnly); }));
    EXPECT_EQ(mask.readAll().simplified(), "SigBlk: 0000000000000000");
    EXPECT_FALSE(startProgram(folder.filePath(QStringLiteral("missing")), {}));
}

}  // namespace tavrelon::desktop
