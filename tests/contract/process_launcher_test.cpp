#include "desktop/linux/process_launcher.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>

#include <QFile>
#include <QTemporaryDir>

#include "desktop/linux/private_memory.h"
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

/// Whether a debugger is allowed.
class PrivateMemory : public ::testing::TestWithParam<bool> {};

TEST_P(PrivateMemory, NeitherDebuggersNorDumpsTellIt) {
    const bool debugged = GetParam();
    const auto keepAndLook = [debugged] {
        rlimit dumps{};
        ::getrlimit(RLIMIT_CORE, &dumps);
        dumps.rlim_cur = dumps.rlim_max;
        ::setrlimit(RLIMIT_CORE, &dumps);
        if (debugged)
            qputenv("TAVRELON_ALLOW_DEBUGGER", "1");
        keepMemoryPrivate();
        ::getrlimit(RLIMIT_CORE, &dumps);
        std::_Exit(dumps.rlim_cur == 0 && ::prctl(PR_GET_DUMPABLE) == (debugged ? 1 : 0) ? 0 : 1);
    };
    EXPECT_EXIT(keepAndLook(), ::testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutADebugger, PrivateMemory, ::testing::Bool());

}  // namespace tavrelon::desktop
