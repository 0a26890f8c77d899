#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <stdexcept>

namespace tavrelon::testing {

/// What a program prints within two seconds.
inline QByteArray outputOf(const QString& program, const QStringList& arguments) {
    QProcess tool;
    tool.start(program, arguments);
    tool.waitForFinished(2000);
    return tool.readAllStandardOutput();
}

inline QString xdotool(const QStringList& arguments) {
    return QString::fromUtf8(outputOf(QStringLiteral("xdotool"), arguments)).trimmed();
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

}  // namespace tavrelon::testing
