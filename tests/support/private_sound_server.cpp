#include "support/private_sound_server.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QThread>
#include <csignal>
#include <stdexcept>

namespace tavrelon::testing {

namespace {

QByteArray outputOf(const QString& program, const QStringList& arguments) {
    QProcess tool;
    tool.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    tool.start(program, arguments);
    if (!tool.waitForFinished(20000) || tool.exitCode() != 0)
        throw std::runtime_error(program.toStdString() + " did not do its work");
    return tool.readAllStandardOutput();
}

}  // namespace

PrivateSoundServer::PrivateSoundServer() {
    const auto socket = folder_.filePath(QStringLiteral("native"));
    QFile script(folder_.filePath(QStringLiteral("script")));
    if (!script.open(QIODevice::WriteOnly))
        throw std::runtime_error("the test cannot write its files");
    script.write("load-module module-native-protocol-unix auth-anonymous=1 socket=" + QFile::encodeName(socket) + '\n');
    script.close();
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const char* const variable : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "PULSE_RUNTIME_PATH"})
        environment.insert(QLatin1StringView(variable), folder_.path());
    process_.setProcessEnvironment(environment);
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.setStandardOutputFile(folder_.filePath(QStringLiteral("log")));
    process_.start(QStringLiteral("pulseaudio"),
                   {QStringLiteral("-n"), QStringLiteral("-F"), script.fileName(), QStringLiteral("--daemonize=no"),
                    QStringLiteral("--exit-idle-time=-1"), QStringLiteral("--use-pid-file=no")});
    const QDeadlineTimer deadline(20000);
    while (!QFile::exists(socket)) {
        if (deadline.hasExpired() || process_.state() == QProcess::NotRunning)
            throw std::runtime_error("the sound server does not start");
        QThread::msleep(10);
    }
    qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(socket));
    microphoneModule_ =
        QString::fromLatin1(control({QStringLiteral("load-module"), QStringLiteral("module-null-source"),
                                     QStringLiteral("source_name=microphone")}))
            .trimmed();
    control({QStringLiteral("set-default-source"), QStringLiteral("microphone")});
}

PrivateSoundServer::~PrivateSoundServer() {
    end();
    qunsetenv("PULSE_SERVER");
}

void PrivateSoundServer::unplugMicrophone() {
    control({QStringLiteral("unload-module"), microphoneModule_});
}

void PrivateSoundServer::signal(int number) const {
    ::kill(static_cast<pid_t>(process_.processId()), number);
}

void PrivateSoundServer::end() {
    if (process_.state() == QProcess::NotRunning)
        return;
    signal(SIGCONT);
    process_.kill();
    process_.waitForFinished(5000);
}

QByteArray PrivateSoundServer::control(const QStringList& command) const {
    return outputOf(QStringLiteral("pactl"), command);
}

int threadCount() {
    return static_cast<int>(
        QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
}

}  // namespace tavrelon::testing
