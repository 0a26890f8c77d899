#include <gmock/gmock.h>
#include <signal.h>

#include <QProcess>
#include <thread>

#include "desktop/event_tap_fixture.h"
#include "desktop/tools.h"
#include "desktop/x11/x11_key_poster.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;
using platform::KeyEvent;
using platform::TapVerdict;
using ::testing::ElementsAre;

namespace {

/// Waits without running the event loop: the application hangs.
bool hangUntil(const std::function<bool()>& condition) {
    for (int i = 0; i < 2000 && !condition(); ++i)
        std::this_thread::sleep_for(5ms);
    return condition();
}

}  // namespace

TEST_F(EventTapOnDesktop, TypingGoesOnWhileTheApplicationHangs) {
    keyboard.strike(place::grave);
    keyboard.strike(place::a);
    ASSERT_TRUE(hangUntil([this] { return window.got(place::a); }));
    EXPECT_THAT(window.presses(), ElementsAre(place::grave, place::a));
    EXPECT_TRUE(log.contains(QStringLiteral("[Hotkey] A key was passed on: nobody answered within 300 ms")));
    keyboard.strike(place::grave);
    keyboard.strike(place::x);
    ASSERT_TRUE(hangUntil([this] { return window.got(place::x); }));
    EXPECT_EQ(log.lines().size(), 2);

    ASSERT_TRUE(eventually([this] { return countSeen(keys::keyA) == 1 && countSeen(7) == 1; }));
    EXPECT_EQ(countSeen(keys::keyGrave), 0) << "it passed, so nobody may act on it";
    window.clear();
    keyboard.strike(place::grave);
    ASSERT_TRUE(settle());
    EXPECT_EQ(countSeen(keys::keyGrave), 1);
    EXPECT_THAT(window.presses(), ElementsAre(place::f12)) << "and all is well again";
}

TEST(EventTapHolder, TypingResumesWhenAStoppedTapIsKilled) {
    XTestKeyboard keyboard;
    KeyWindow window;
    QProcess holder;
    holder.start(QStringLiteral(EVENT_TAP_HOLDER), QStringList());
    ASSERT_TRUE(holder.waitForReadyRead(10'000));
    keyboard.strike(place::grave);
    keyboard.strike(place::a);
    ASSERT_TRUE(eventually([&] { return window.got(place::a); }));
    EXPECT_FALSE(window.got(place::grave)) << "it does hold the key";

    ASSERT_EQ(::kill(static_cast<pid_t>(holder.processId()), SIGSTOP), 0);
    keyboard.strike(place::grave);
    keyboard.strike(place::x);
    std::this_thread::sleep_for(50ms);
    EXPECT_FALSE(window.got(place::x)) << "the keyboard is frozen";
    ASSERT_EQ(::kill(static_cast<pid_t>(holder.processId()), SIGKILL), 0);
    ASSERT_TRUE(holder.waitForFinished(10'000));
    keyboard.strike(place::c);
    EXPECT_TRUE(eventually([&] { return window.got(place::x) && window.got(place::c); }));
}

TEST(EventTapServer, TheEndOfTheServerIsSurvived) {
    BareServer server;
    const QByteArray before = qgetenv("DISPLAY");
    qputenv("DISPLAY", server.display());
    desktop::QtMainLoop loop;
    RecordingLog log;
    const auto posted = std::make_shared<desktop::PostedKeys>();
    desktop::X11EventTap tap(loop, log, posted);
    tap.setHotkeys({keys::defaults::toggleHotkey});
    ASSERT_TRUE(tap.start([](const auto&) { return TapVerdict::Pass; }));
    auto poster = desktop::X11KeyPoster::open(loop, posted);
    ASSERT_TRUE(poster);

    server.kill();
    EXPECT_TRUE(
        eventually([&] { return log.contains(QStringLiteral("[Hotkey] The X server is gone: hotkeys are off")); }));
    (*poster)->press(keys::keyV, keys::commandFlag);
    tap.setHotkeys({});
    EXPECT_FALSE(tap.start([](const auto&) { return TapVerdict::Pass; }));
    qputenv("DISPLAY", before);
}

}  // namespace tavrelon::testing
