#include "desktop/pasteboard_session.h"

#include <QProcess>

namespace tavrelon::testing {

PasteboardSession::Ran PasteboardSession::run(const QString& program, const QStringList& arguments,
                                              const QByteArray& input) {
    QProcess process;
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(10'000) || process.exitStatus() != QProcess::NormalExit) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    return {.exitCode = process.exitCode(), .output = process.readAllStandardOutput()};
}

std::optional<QByteArray> PasteboardSession::readByXclip(const QString& target) {
    const auto ran = run(QStringLiteral("xclip"), {QStringLiteral("-o"), QStringLiteral("-selection"),
                                                   QStringLiteral("clipboard"), QStringLiteral("-t"), target});
    return ran.exitCode == 0 ? std::optional(ran.output) : std::nullopt;
}

void PasteboardSession::copyByXclip(const QByteArray& bytes, const QString& target) {
    QProcess process;
    // It serves from a child in the background, which would keep our end of the pipes open.
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QStringLiteral("xclip"), {QStringLiteral("-i"), QStringLiteral("-selection"),
                                            QStringLiteral("clipboard"), QStringLiteral("-t"), target});
    process.write(bytes);
    process.closeWriteChannel();
    ASSERT_TRUE(process.waitForFinished(10'000));
    ASSERT_EQ(process.exitCode(), 0);
}

QByteArray PasteboardSession::pattern(qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    std::uint32_t state = 12345;
    for (auto& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

}  // namespace tavrelon::testing
