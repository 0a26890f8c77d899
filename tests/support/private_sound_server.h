#pragma once

#include <QProcess>
#include <QTemporaryDir>

namespace tavrelon::testing {

/// A PulseAudio server of the test's own with a microphone that hears silence. While it lives, clients in this process
/// find this server and no other.
class PrivateSoundServer {
 public:
    /// Throws when it does not start.
    PrivateSoundServer();
    ~PrivateSoundServer();

    void unplugMicrophone();

    void signal(int number) const;
    void end();

 private:
    QByteArray control(const QStringList& command) const;

    QTemporaryDir folder_;
    QProcess process_;
    QString microphoneModule_;
};

/// How many threads this process has.
int threadCount();

}  // namespace tavrelon::testing
