#include "support/private_sound_server.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QThread>
#include <algorithm>
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

PrivateSoundServer::PrivateSoundServer(Microphone microphone) : microphone_(microphone) {
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
    if (microphone_ == Microphone::HearsSpeakers)
        listen();
    plugMicrophone();
}

/// Speakers that are no device play in blocks of seconds unless somebody is in a hurry.
void PrivateSoundServer::listen() {
    control({QStringLiteral("load-module"), QStringLiteral("module-null-sink"), QStringLiteral("sink_name=speakers")});
    listener_.setStandardOutputFile(QProcess::nullDevice());
    listener_.start(QStringLiteral("parec"),
                    {QStringLiteral("--device=speakers.monitor"), QStringLiteral("--latency-msec=10")});
    listener_.waitForStarted();
}

PrivateSoundServer::~PrivateSoundServer() {
    end();
    qunsetenv("PULSE_SERVER");
}

void PrivateSoundServer::plugMicrophone() {
    const auto kind = microphone_ == Microphone::HearsSpeakers ? QStringList{QStringLiteral("module-remap-source"),
                                                                             QStringLiteral("master=speakers.monitor")}
                                                               : QStringList{QStringLiteral("module-null-source")};
    microphoneModule_ = QString::fromLatin1(control(QStringList{QStringLiteral("load-module")} + kind +
                                                    QStringList{QStringLiteral("source_name=microphone")}))
                            .trimmed();
    control({QStringLiteral("set-default-source"), QStringLiteral("microphone")});
}

void PrivateSoundServer::unplugMicrophone() {
    control({QStringLiteral("unload-module"), microphoneModule_});
}

void PrivateSoundServer::say(const QString& sentence) {
    const auto file = folder_.filePath(QStringLiteral("speech.wav"));
    outputOf(QStringLiteral("espeak-ng"), {QStringLiteral("-v"), QStringLiteral("en-us"), QStringLiteral("-s"),
                                           QStringLiteral("140"), QStringLiteral("-w"), file, sentence});
    outputOf(QStringLiteral("paplay"), {QStringLiteral("--device=speakers"), file});
}

int PrivateSoundServer::recordings() const {
    const auto lines =
        control({QStringLiteral("list"), QStringLiteral("short"), QStringLiteral("source-outputs")}).trimmed();
    const auto clients = static_cast<int>(lines.count("protocol-native"));
    return listener_.state() == QProcess::Running ? clients - 1 : clients;
}

void PrivateSoundServer::signal(int number) const {
    ::kill(static_cast<pid_t>(process_.processId()), number);
}

void PrivateSoundServer::end() {
    if (process_.state() == QProcess::NotRunning)
        return;
    if (listener_.state() != QProcess::NotRunning) {
        listener_.kill();
        listener_.waitForFinished(5000);
    }
    signal(SIGCONT);
    process_.kill();
    process_.waitForFinished(5000);
}

QByteArray PrivateSoundServer::control(const QStringList& command) const {
    return outputOf(QStringLiteral("pactl"), command);
}

namespace {

QStringList threadNames(const QString& process) {
    const QDir tasks(QStringLiteral("/proc/%1/task").arg(process));
    QStringList names;
    for (const auto& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(tasks.filePath(task + QStringLiteral("/comm")));
        names << (file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString());
    }
    return names;
}

}  // namespace

int threadCount() {
    return static_cast<int>(threadNames(QStringLiteral("self")).size());
}

int soundThreadCount(qint64 process) {
    return static_cast<int>(std::ranges::count_if(threadNames(QString::number(process)), [](const QString& name) {
        return name.startsWith(QStringLiteral("audio input")) || name.startsWith(QStringLiteral("speech"));
    }));
}

}  // namespace tavrelon::testing
