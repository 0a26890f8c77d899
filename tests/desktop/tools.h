#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <csignal>
#include <stdexcept>

namespace tavrelon::testing {

/// What a program prints within ten seconds.
inline QByteArray outputOf(const QString& program, const QStringList& arguments) {
    QProcess tool;
    tool.start(program, arguments);
    tool.waitForFinished(10'000);
    return tool.readAllStandardOutput();
}

inline QString xdotool(const QStringList& arguments) {
    return QString::fromUtf8(outputOf(QStringLiteral("xdotool"), arguments)).trimmed();
}

/// Presses keys or combinations, as xdotool names them.
inline void pressKeys(const QStringList& keys) {
    xdotool(QStringList{QStringLiteral("key"), QStringLiteral("--delay"), QStringLiteral("1")} + keys);
}

/// The title of the window that has the focus.
inline QString frontmostTitle() {
    return xdotool({QStringLiteral("getwindowfocus"), QStringLiteral("getwindowname")});
}

/// Empty for a file that cannot be read.
inline QByteArray contentsOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Makes the folder too.
inline void writeWhole(const QString& path, const QByteArray& content) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        throw std::runtime_error("the test cannot write its files");
}

/// A program of a shell's lines.
inline void writeProgram(const QString& path, const QByteArray& lines) {
    writeWhole(path, "#!/bin/sh\n" + lines);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

/// A program with a window, ended as a window manager's user would end it.
class RunningProgram {
 public:
    RunningProgram(const QString& program, const QStringList& arguments) {
        process_.setStandardOutputFile(QProcess::nullDevice());
        process_.setStandardErrorFile(QProcess::nullDevice());
        process_.start(program, arguments);
        process_.waitForStarted(10'000);
    }
    ~RunningProgram() {
        signal(SIGCONT);
        process_.terminate();  // a killed one would bring up a dialog at its next start
        if (!process_.waitForFinished(5000)) {
            process_.kill();
            process_.waitForFinished();
        }
    }
    qint64 process() const { return process_.processId(); }
    void signal(int number) const {
        if (process() > 0)
            ::kill(static_cast<pid_t>(process()), number);
    }

 private:
    QProcess process_;
};

/// An X server beside the desktop's, on which nobody manages windows.
class BareServer {
 public:
    BareServer() {
        process_.start(QStringLiteral("Xvfb"),
                       {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-nolisten"),
                        QStringLiteral("tcp"), QStringLiteral("-noreset")});
        if (!process_.waitForReadyRead(20'000))
            throw std::runtime_error("a second X server does not start");
        display_ = ':' + process_.readAllStandardOutput().trimmed();
    }
    ~BareServer() { kill(); }

    const QByteArray& display() const { return display_; }
    void kill() {
        process_.kill();
        process_.waitForFinished(10'000);
    }

 private:
    QProcess process_;
    QByteArray display_;
};

}  // namespace tavrelon::testing
