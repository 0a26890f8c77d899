// What every microphone keeps to, on the fake and on a real sound server.
#include <gtest/gtest.h>
#include <pulse/def.h>

#include <atomic>
#include <csignal>

#include "desktop/audio/pulse_audio_input.h"
#include "support/fake_audio_input.h"
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

/// A microphone in a world where it can be pulled.
class MicrophoneWorld {
 public:
    virtual ~MicrophoneWorld() = default;
    virtual platform::AudioInput& input() = 0;
    virtual void unplug() = 0;
    virtual void pass() {}  ///< lets time go by
};

class FakeMicrophoneWorld : public MicrophoneWorld {
 public:
    FakeAudioInput fake;
    platform::AudioInput& input() override { return fake; }
    void unplug() override { fake.unplug(); }
    void pass() override { fake.sound(1024); }
};

class PulseWorld : public MicrophoneWorld {
 public:
    PrivateSoundServer server{PrivateSoundServer::Microphone::HearsSilence};
    VirtualMainLoop loop;
    RecordingLog log;
    desktop::PulseAudioInput pulse{loop, log, 5s};  // on however busy a machine
    platform::AudioInput& input() override { return pulse; }
    void unplug() override { server.unplugMicrophone(); }
    void pass() override { loop.runUntilIdle(); }
};

}  // namespace

class AudioInputContract : public ::testing::TestWithParam<bool> {
 public:
    std::unique_ptr<MicrophoneWorld> world;
    std::shared_ptr<CountingTap> tap = std::make_shared<CountingTap>();

    AudioInputContract() {
        if (GetParam())
            world = std::make_unique<PulseWorld>();
        else
            world = std::make_unique<FakeMicrophoneWorld>();
    }
    void start() {
        EXPECT_EQ(world->input().authorizationStatus(), AuthorizationStatus::Authorized);
        EXPECT_TRUE(world->input().hasDefaultDevice());
        EXPECT_GT(world->input().inputChannelCount(), 0);
        world->input().installTap(1024, tap);
        ASSERT_TRUE(world->input().start());
    }
    bool hears(std::size_t samples) {
        return eventually([&] {
            world->pass();
            return tap->samples >= samples;
        });
    }
};

TEST_P(AudioInputContract, SoundComesFromTheStartToTheStopAndFromTheNextStart) {
    start();
    EXPECT_TRUE(hears(8000));
    world->input().stop();
    QThread::msleep(200);  // what was under way has arrived
    const auto heard = tap->samples.load();
    world->pass();
    QThread::msleep(200);
    EXPECT_EQ(tap->samples, heard);
    EXPECT_EQ(tap->ends, 0);
    const auto first = tap;
    tap = std::make_shared<CountingTap>();
    start();
    EXPECT_TRUE(hears(1024));
    EXPECT_EQ(first->samples, heard);
}

TEST_P(AudioInputContract, AMicrophoneThatIsPulledEndsOnceAndIsMissedFromThenOn) {
    start();
    EXPECT_TRUE(hears(1024));
    world->unplug();
    EXPECT_TRUE(eventually([&] { return tap->ends == 1; }));
    world->pass();
    EXPECT_FALSE(world->input().hasDefaultDevice());
    EXPECT_FALSE(world->input().start());
    EXPECT_EQ(tap->ends, 1);
}

INSTANTIATE_TEST_SUITE_P(OnTheFakeAndOnAServer, AudioInputContract, ::testing::Bool());

class PulseTest : public ::testing::Test {
 public:
    PulseWorld world;
    std::shared_ptr<CountingTap> tap = std::make_shared<CountingTap>();

    void start() {
        world.pulse.installTap(1024, tap);
        ASSERT_TRUE(world.pulse.start());
    }
    bool isRecorded() {
        return eventually([&] { return tap->samples > 0; });
    }
};

TEST_F(PulseTest, NothingIsLeftBehindByAnyRecording) {
    const int threads = threadCount();
    for (int time = 0; time < 3; ++time) {
        start();
        ASSERT_TRUE(isRecorded());
        EXPECT_EQ(world.server.recordings(), 1);
        if (time == 1)
            start();  // over the first
        world.pulse.stop();
        world.pass();
        EXPECT_TRUE(eventually([&] { return threadCount() == threads && world.server.recordings() == 0; }));
    }
    EXPECT_TRUE(world.pulse.hasDefaultDevice());  // a question that leads to nothing
    EXPECT_TRUE(eventually([&] { return threadCount() == threads; }));
    EXPECT_EQ(tap->ends, 0);
}

TEST_F(PulseTest, AServerThatDiesOrHangsEndsTheRecording) {
    start();
    ASSERT_TRUE(isRecorded());
    world.server.signal(SIGSTOP);
    EXPECT_TRUE(eventually([&] { return tap->ends == 1; }));
    world.server.signal(SIGCONT);
    tap = std::make_shared<CountingTap>();
    world.pass();
    start();
    ASSERT_TRUE(isRecorded());
    world.server.end();
    EXPECT_TRUE(eventually([&] { return tap->ends == 1; }));
    world.pass();
    EXPECT_FALSE(world.pulse.hasDefaultDevice());
    EXPECT_EQ(world.pulse.authorizationStatus(), AuthorizationStatus::Authorized) << "its absence is no refusal";
}

TEST_F(PulseTest, AHungServerCostsItsLimitOnceAndEndsTheRecordingLater) {
    const int threads = threadCount();
    desktop::PulseAudioInput impatient(world.loop, world.log, 100ms);
    world.server.signal(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    for (int question = 0; question < 1000; ++question)
        EXPECT_TRUE(impatient.hasDefaultDevice());
    EXPECT_LT(timer.elapsed(), 10000);
    EXPECT_EQ(threadCount(), threads + 1);
    impatient.installTap(1024, tap);
    EXPECT_TRUE(impatient.start());
    EXPECT_TRUE(eventually([&] { return tap->ends == 1; }));
    EXPECT_EQ(world.log.lines(),
              QStringList{QStringLiteral("[Audio] No microphone: the sound server does not answer")});
    EXPECT_TRUE(eventually([&] { return threadCount() == threads; }));
    world.server.signal(SIGCONT);
    world.pass();
    start();
    EXPECT_TRUE(isRecorded());
}

TEST(PulseErrors, OnlyARefusalIsAMatterOfRights) {
    using Verdict = desktop::PulseAnswer::Verdict;
    EXPECT_EQ(desktop::verdictOnError(PA_ERR_ACCESS), Verdict::Refused);
    EXPECT_EQ(desktop::verdictOnError(PA_ERR_AUTHKEY), Verdict::Refused);
    EXPECT_EQ(desktop::verdictOnError(PA_ERR_NOENTITY), Verdict::NoMicrophone);
    EXPECT_EQ(desktop::verdictOnError(PA_ERR_CONNECTIONREFUSED), Verdict::NoServer);
    EXPECT_EQ(desktop::verdictOnError(PA_ERR_CONNECTIONTERMINATED), Verdict::NoServer);
}

}  // namespace tavrelon::testing
