// The microphone of a real sound server.
#include <gtest/gtest.h>

#include <atomic>
#include <csignal>

#include "desktop/audio/pulse_audio_input.h"
#include "support/private_sound_server.h"
#include "support/qt_gtest.h"
#include "support/recording_log.h"
#include "support/virtual_main_loop.h"
#include "support/waiting.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;
using platform::AuthorizationStatus;

namespace {

class CountingTap : public platform::AudioTap {
 public:
    std::atomic<std::size_t> samples = 0;
    std::atomic<int> ends = 0;
    void buffer(std::span<const std::int16_t> sound) override { samples += sound.size(); }
    void ended() override { ++ends; }
};

}  // namespace

class PulseTest : public ::testing::Test {
 public:
    PrivateSoundServer server;
    VirtualMainLoop loop;
    RecordingLog log;
    desktop::PulseAudioInput pulse{loop, log, 5s};  // on however busy a machine
    std::shared_ptr<CountingTap> tap = std::make_shared<CountingTap>();

    void start() {
        pulse.installTap(1024, tap);
        ASSERT_TRUE(pulse.start());
    }
    bool hears(std::size_t samples) {
        return eventually([&] {
            loop.runUntilIdle();
            return tap->samples >= samples;
        });
    }
};

TEST_F(PulseTest, AMicrophoneThatIsPulledEndsOnceAndIsMissedFromThenOn) {
    start();
    EXPECT_TRUE(hears(1024));
    server.unplugMicrophone();
    EXPECT_TRUE(eventually([&] { return tap->ends == 1; }));
    loop.runUntilIdle();
    EXPECT_FALSE(pulse.hasDefaultDevice());
    EXPECT_FALSE(pulse.start());
    EXPECT_EQ(tap->ends, 1);
}

TEST_F(PulseTest, AServerThatDiesOrHangsEndsTheRecording) {
    start();
    ASSERT_TRUE(hears(1));
    server.signal(SIGSTOP);
    EXPECT_TRUE(eventually([&] { return tap->ends == 1; }));
    server.signal(SIGCONT);
    tap = std::make_shared<CountingTap>();
    loop.runUntilIdle();
    start();
    ASSERT_TRUE(hears(1));
    server.end();
    EXPECT_TRUE(eventually([&] { return tap->ends == 1; }));
    loop.runUntilIdle();
    EXPECT_FALSE(pulse.hasDefaultDevice());
    EXPECT_EQ(pulse.authorizationStatus(), AuthorizationStatus::Authorized) << "its absence is no refusal";
}

TEST_F(PulseTest, AHungServerCostsItsLimitOnceAndEndsTheRecordingLater) {
    const int threads = threadCount();
    desktop::PulseAudioInput impatient(loop, log, 100ms);
    server.signal(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    for (int question = 0; question < 1000; ++question)
        EXPECT_TRUE(impatient.hasDefaultDevice());
    EXPECT_LT(timer.elapsed(), 10000);
    EXPECT_EQ(threadCount(), threads + 1);
    impatient.installTap(1024, tap);
    EXPECT_TRUE(impatient.start());
    EXPECT_TRUE(eventually([&] { return tap->ends == 1; }));
    EXPECT_EQ(log.lines(), QStringList{QStringLiteral("[Audio] No microphone: the sound server does not answer")});
    EXPECT_TRUE(eventually([&] { return threadCount() == threads; }));
    server.signal(SIGCONT);
    loop.runUntilIdle();
    start();
    EXPECT_TRUE(hears(1));
}

}  // namespace tavrelon::testing
