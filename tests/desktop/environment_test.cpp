// The program where something that it counts on is missing or broken: a clear line, an orderly life or end, nothing
// lost.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sysexits.h>
#include <unistd.h>

#include <QLocalServer>
#include <csignal>

#include "desktop/main_job_session.h"
#include "desktop/tools.h"
#include "support/qt_gtest.h"
#include "text/json.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;

namespace {

/// The command that runs another in a name space where file systems can be mounted.
QStringList withMounts() {
    QStringList command{QStringLiteral("unshare"), QStringLiteral("--mount")};
    if (::getuid() != 0)
        command << QStringLiteral("--map-root-user");
    return command;
}

}  // namespace

class EnvironmentTest : public ::testing::Test {
 public:
    EnvironmentTest() {
        environment.remove(QStringLiteral("XDG_CONFIG_HOME"));
        environment.remove(QStringLiteral("XDG_DATA_HOME"));
        environment.insert(QStringLiteral("HOME"), home.path());
        const text::Json settings{{"enableCustomPollinations", true},
                                  {"pollinationsBaseURL", service.url().toStdString()},
                                  {"pollinationsVisionModel", "test-model"}};
        writeWhole(settingsPath(), text::compactJson(settings));
    }
    ~EnvironmentTest() override { EXPECT_TRUE(end(first)) << "it does not end when asked"; }

    QString settingsPath() const { return home.filePath(QStringLiteral(".config/Tavrelon/tavrelon.settings")); }

    /// Starts the program, by another command if one is given.
    void start(QProcess& process, const QString& log, QStringList command = {}) {
        command << QStringLiteral(TAVRELON_PROGRAM) << QStringLiteral("--background");
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.setStandardOutputFile(home.filePath(log));
        const auto program = command.takeFirst();
        process.start(program, command);
    }
    bool listens(const QString& log = QStringLiteral("log")) {
        return eventually([&] { return contentsOf(home.filePath(log)).contains("[Hotkey] Listening"); });
    }
    QByteArray log() const { return contentsOf(home.filePath(QStringLiteral("log"))); }

    /// Runs the program to its end and gives its exit status, or -1 when it does not end in good order and time.
    int run(const QStringList& arguments = {}) {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(TAVRELON_PROGRAM), arguments);
        if (!process.waitForFinished(10000)) {
            process.kill();
            process.waitForFinished();
            return -1;
        }
        said = process.readAllStandardOutput() + process.readAllStandardError();
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    static bool end(QProcess& process) {
        if (process.state() == QProcess::NotRunning)
            return true;
        process.terminate();
        const bool ended = process.waitForFinished(10000);
        process.kill();
        process.waitForFinished(1000);
        return ended && process.exitStatus() == QProcess::NormalExit;
    }

    /// One request from the keyboard to the saved file.
    void expectARequestToWork() {
        StandInAnswer answer;
        answer.content = QStringLiteral("Grüße, 世界 👋");
        service.ledger().script({answer});
        RunningEditor editor(RunningEditor::Kind::Mousepad, keyboard, QString());
        pressToggleHotkey(keyboard);
        ASSERT_TRUE(eventually([&] { return log().contains("[Hotkey] Starting text listening"); })) << log().data();
        editor.type(QStringLiteral("greet"));
        pressToggleHotkey(keyboard);
        ASSERT_TRUE(eventually([&] { return log().contains("Text generated with custom model"); })) << log().data();
        EXPECT_EQ(editor.saved(*answer.content), *answer.content) << log().data();
    }

    StandInService service;
    XTestKeyboard keyboard;
    QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QProcess first;
    QByteArray said;  ///< by the last program that `run` ran
};

TEST_F(EnvironmentTest, WithoutAnXServerItSaysSoAndEnds) {
    environment.remove(QStringLiteral("DISPLAY"));
    EXPECT_EQ(run(), EX_UNAVAILABLE);
    EXPECT_EQ(said, "Tavrelon cannot start: DISPLAY names no X server.\n");
    environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":4711"));
    EXPECT_EQ(run(), EX_UNAVAILABLE);
    EXPECT_EQ(said, "Tavrelon cannot start: The X server of display :4711 cannot be reached.\n");
    EXPECT_EQ(run({QStringLiteral("--version")}), EX_OK);
    EXPECT_TRUE(said.startsWith("Tavrelon ")) << said.data();
    EXPECT_EQ(run({QStringLiteral("--fast")}), EX_USAGE);
    EXPECT_EQ(said, "'--fast' is no option of Tavrelon; --help shows them.\n");
}

TEST_F(EnvironmentTest, AnXServerThatGoesAwayTakesItAlong) {
    BareServer server;
    environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(server.display()));
    // The X library ends the process where it stands, so that nothing is given back.
    environment.insert(QStringLiteral("ASAN_OPTIONS"),
                       environment.value(QStringLiteral("ASAN_OPTIONS")) + QStringLiteral(":detect_leaks=0"));
    start(first, QStringLiteral("log"));
    ASSERT_TRUE(listens()) << log().data();
    server.kill();
    ASSERT_TRUE(first.waitForFinished(10000)) << log().data();
    EXPECT_EQ(first.exitStatus(), QProcess::NormalExit) << log().data();
    EXPECT_TRUE(log().contains("X")) << log().data();
}

TEST_F(EnvironmentTest, OtherProgramsCannotLookIntoItsMemory) {
    first.setChildProcessModifier([] {
        rlimit dumps{};
        ::getrlimit(RLIMIT_CORE, &dumps);
        dumps.rlim_cur = dumps.rlim_max;
        ::setrlimit(RLIMIT_CORE, &dumps);
    });
    start(first, QStringLiteral("log"));
    ASSERT_TRUE(listens()) << log().data();
    const auto process = QStringLiteral("/proc/%1/").arg(first.processId());
    EXPECT_TRUE(contentsOf(process + QStringLiteral("limits")).simplified().contains("Max core file size 0 "));
    EXPECT_EQ(QFileInfo(process + QStringLiteral("mem")).ownerId(), 0U) << "what nobody may look into is the system's";
}

TEST_F(EnvironmentTest, ASecondProcessCallsTheFirstAndEnds) {
    start(first, QStringLiteral("log"));
    ASSERT_TRUE(listens()) << log().data();
    EXPECT_EQ(run(), EX_OK);
    EXPECT_EQ(said, "Tavrelon is running already and shows its dashboard.\n");

    ::kill(static_cast<pid_t>(first.processId()), SIGSTOP);
    EXPECT_EQ(run(), EX_TEMPFAIL);
    EXPECT_EQ(said, "Tavrelon is running already and does not answer.\n");

    QTemporaryDir other;  // settings of its own, so a program of its own
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), other.path());
    QProcess neighbour;
    start(neighbour, QStringLiteral("neighbour"));
    EXPECT_TRUE(listens(QStringLiteral("neighbour")));
    EXPECT_TRUE(end(neighbour));

    environment.remove(QStringLiteral("XDG_CONFIG_HOME"));
    first.kill();
    ASSERT_TRUE(first.waitForFinished());
    start(first, QStringLiteral("log"));
    EXPECT_TRUE(listens()) << "a killed program must not lock its successor out";
}

TEST_F(EnvironmentTest, AHomeThatTakesNoFilesCostsOnlyTheMemory) {
    const auto before = contentsOf(settingsPath());
    environment.insert(QStringLiteral("TAVRELON_ALLOW_DEBUGGER"), QStringLiteral("1"));  // for a look at its folders
    for (const auto& mount :
         {QStringLiteral("mount -o bind,ro \"$HOME\" \"$HOME\" 2>/dev/null || "
                         "{ mount -o bind \"$HOME\" \"$HOME\" && mount -o remount,bind,ro \"$HOME\"; }"),
          QStringLiteral(
              "s=$(cat \"$HOME/.config/Tavrelon/tavrelon.settings\") && mount -t tmpfs -o size=64k full \"$HOME\" && "
              "mkdir -p \"$HOME/.config/Tavrelon\" && echo \"$s\" >\"$HOME/.config/Tavrelon/tavrelon.settings\" && "
              "{ cat /dev/zero >\"$HOME/filler\" 2>/dev/null; true; }")}) {
        SCOPED_TRACE(qPrintable(mount));
        start(first, QStringLiteral("log"),
              withMounts() << QStringLiteral("sh") << QStringLiteral("-c")
                           << mount + QStringLiteral(" && exec \"$0\" \"$@\""));
        ASSERT_TRUE(listens()) << log().data();
        expectARequestToWork();
        EXPECT_TRUE(eventually([&] { return log().contains("Failed to save history: "); })) << log().data();
        const auto there = QStringLiteral("/proc/%1/root").arg(first.processId()) + settingsPath();
        EXPECT_EQ(contentsOf(there).trimmed(), before);
        EXPECT_TRUE(end(first));
    }
}

TEST_F(EnvironmentTest, WithoutASessionBusAndWithAStrangeLocaleItWorksThroughTheClipboard) {
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nowhere/bus"));
    for (const auto* variable : {"LANG", "LC_ALL"})
        environment.insert(QString::fromLatin1(variable), QStringLiteral("tlh_QO.KOI-7"));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), QStringLiteral("relative/folder"));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), QStringLiteral("~/data"));
    environment.remove(QStringLiteral("XDG_RUNTIME_DIR"));
    start(first, QStringLiteral("log"));
    ASSERT_TRUE(listens()) << log().data();
    EXPECT_TRUE(eventually([&] { return log().contains("[Accessibility] No accessibility bus"); })) << log().data();
    expectARequestToWork();
    EXPECT_TRUE(eventually([&] {
        return contentsOf(home.filePath(QStringLiteral(".local/share/Tavrelon/history.json"))).contains("greet");
    }));
}

TEST_F(EnvironmentTest, WithBusesThatHangItStartsAndWorksThroughTheClipboard) {
    QLocalServer silent;  // nobody runs its loop while the program starts
    ASSERT_TRUE(silent.listen(home.filePath(QStringLiteral("bus"))));
    const auto address = QStringLiteral("unix:path=") + silent.fullServerName();
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
    environment.insert(QStringLiteral("IBUS_ADDRESS"), address);
    environment.insert(QStringLiteral("QT_IM_MODULE"), QStringLiteral("ibus"));
    start(first, QStringLiteral("log"));
    ASSERT_TRUE(listens()) << log().data();
    EXPECT_TRUE(log().contains("[Start] The session bus does not answer")) << log().data();
    EXPECT_TRUE(log().contains("[Start] IBus does not answer")) << log().data();
    expectARequestToWork();
}

}  // namespace tavrelon::testing
