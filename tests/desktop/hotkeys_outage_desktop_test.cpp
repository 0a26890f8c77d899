#include <gmock/gmock.h>
#include <signal.h>

#include <QProcess>

#include "desktop/hotkeys_fixture.h"
#include "desktop/tools.h"
#include "desktop/x11/keys/x11_key_poster.h"
#include "support/qt_gtest.h"

namespace tavrelon::testing {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// A program of its own that has the grave accent as a hotkey.
class Holder {
 public:
    Holder() {
        process_.start(QStringLiteral(HOTKEY_HOLDER), QStringList());
        if (!process_.waitForReadyRead(20'000))
            throw std::runtime_error("the holder does not start");
    }
    ~Holder() {
        process_.kill();
        process_.waitForFinished(10'000);
    }

    void signal(int number) { ::kill(static_cast<pid_t>(process_.processId()), number); }
    void kill() {
        signal(SIGKILL);
        process_.waitForFinished(10'000);
    }
    bool isStopped() const {
        const auto status = contentsOf(QStringLiteral("/proc/%1/stat").arg(process_.processId()));
        return status.mid(status.lastIndexOf(')') + 2).startsWith('T');
    }

 private:
    QProcess process_;
};

/// Whether a press of the grave accent reaches the window; the A behind it always does.
bool graveArrives(XTestKeyboard& keyboard, KeyWindow& window) {
    window.clear();
    keyboard.strike(place::grave);
    keyboard.strike(place::a);
    EXPECT_TRUE(eventually([&] { return window.got(place::a); })) << "an ordinary key was lost or held up";
    return window.got(place::grave);
}

}  // namespace

TEST(HotkeyHolder, AStoppedOrKilledProgramHoldsUpNoOrdinaryKey) {
    XTestKeyboard keyboard;
    KeyWindow window;
    {
        Holder holder;
        EXPECT_FALSE(graveArrives(keyboard, window));
        holder.signal(SIGSTOP);  // nobody can prepare for that: its hotkeys do nothing, all other keys arrive
        ASSERT_TRUE(eventually([&] { return holder.isStopped(); }));
        EXPECT_FALSE(graveArrives(keyboard, window));
        EXPECT_FALSE(graveArrives(keyboard, window));
        holder.signal(SIGCONT);
        EXPECT_FALSE(graveArrives(keyboard, window));
        holder.kill();
        EXPECT_TRUE(graveArrives(keyboard, window));
    }
    Holder holder;
    holder.signal(SIGTSTP);  // Ctrl+Z
    ASSERT_TRUE(eventually([&] { return holder.isStopped(); }));
    EXPECT_TRUE(graveArrives(keyboard, window));
    holder.signal(SIGCONT);
    EXPECT_TRUE(eventually([&] { return !graveArrives(keyboard, window); }));
    holder.signal(SIGTSTP);
    ASSERT_TRUE(eventually([&] { return holder.isStopped(); })) << "as often as the user likes";
    EXPECT_THAT(keyboard.down(), IsEmpty());
}

TEST(HotkeysServer, TheEndOfTheServerIsSurvived) {
    BareServer server;
    const QByteArray before = qgetenv("DISPLAY");
    qputenv("DISPLAY", server.display());
    desktop::QtMainLoop loop;
    RecordingLog log;
    const auto posted = std::make_shared<desktop::PostedKeys>();
    desktop::X11Hotkeys hotkeys(loop, log, posted);
    hotkeys.declare({HotkeysOnDesktop::toggle});
    ASSERT_TRUE(hotkeys.start([](const auto&) {}));
    auto poster = desktop::X11KeyPoster::open(loop, posted);
    ASSERT_TRUE(poster);

    server.kill();
    EXPECT_TRUE(
        eventually([&] { return log.contains(QStringLiteral("[Hotkey] The X server is gone: hotkeys are off")); }));
    (*poster)->press(keys::keyV, keys::commandFlag);
    hotkeys.declare({});
    EXPECT_FALSE(hotkeys.start([](const auto&) {}));
    qputenv("DISPLAY", before);
}

}  // namespace tavrelon::testing
