// tavrelon-window-picture IDENTIFIER | --screen: writes a picture that KWin takes to the standard output, of a window
// alone or of the screen in use. KWin looks at each call which program asks, by a path that Tavrelon hides together
// with its memory; this program knows nothing that is worth hiding.
#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <cstdio>

#include "desktop/kwin/screen/kwin_pixels.h"

namespace {

constexpr int limitMs = 1800;

/// What is not whole does not fit its head.
bool handOn(const QByteArray& head, int end) {
    QFile output;
    QFile pixels;
    if (!output.open(STDOUT_FILENO, QFile::WriteOnly | QFile::Unbuffered) ||
        !pixels.open(end, QFile::ReadOnly | QFile::Unbuffered))
        return false;
    auto part = head;
    do {
        if (output.write(part) != part.size())
            return false;
        part = pixels.read(1 << 16);
    } while (!part.isEmpty());
    return true;
}

QDBusMessage question(const QString& subject, int end) {
    const bool isScreen = subject == u"--screen";
    auto message = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.KWin"), QStringLiteral("/org/kde/KWin/ScreenShot2"),
        QStringLiteral("org.kde.KWin.ScreenShot2"),
        isScreen ? QStringLiteral("CaptureActiveScreen") : QStringLiteral("CaptureWindow"));
    if (!isScreen)
        message << subject;
    // Tavrelon's own windows are hidden by newer versions unless asked not to; its page may be what is asked about.
    message << QVariantMap{{QStringLiteral("native-resolution"), true},
                           {QStringLiteral("include-cursor"), true},
                           {QStringLiteral("hide-caller-windows"), false}}
            << QVariant::fromValue(QDBusUnixFileDescriptor(end));
    message.setAutoStartService(false);
    return message;
}

}  // namespace

int main(int count, char** arguments) {
    const QCoreApplication application(count, arguments);
    int ends[2];
    if (count != 2 || ::pipe2(ends, O_CLOEXEC) != 0)
        return 64;
    auto message = question(QString::fromLocal8Bit(arguments[1]), ends[1]);
    ::close(ends[1]);
    const auto answer = QDBusConnection::sessionBus().call(message, QDBus::Block, limitMs);
    message = {};  // with its own end of the pipe, which ends with KWin's
    const auto told = answer.arguments().value(0);
    const auto pixels = tavrelon::desktop::pixelsToldBy(qdbus_cast<QVariantMap>(told));
    if (answer.type() == QDBusMessage::ReplyMessage && pixels)
        return handOn(headOf(*pixels), ends[0]) ? 0 : 74;
    std::fputs(qPrintable(answer.errorName()), stderr);
    return 69;
}
