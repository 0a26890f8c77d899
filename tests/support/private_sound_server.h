#pragma once

#include <QProcess>
#include <QTemporaryDir>

namespace tavrelon::testing {

/// A PulseAudio server of the test's own with a microphone, which hears silence or what the speakers play. While it
/// lives, clients in this process and in those that it starts find this server and no other.
class PrivateSoundServer {
 public:
    enum class Microphone { HearsSilence, HearsSpeakers };

    /// Throws when it does not start.
    explicit PrivateSoundServer(Microphone microphone);
    ~PrivateSoundServer();

    void plugMicrophone();
    void unplugMicrophone();

    /// Where the microphone hears the speakers: speaks an English sentence and returns when the last word was spoken.
    void say(const QString& sentence);

    /// How many clients record at the moment.
    int recordings() const;

    void signal(int number) const;
    void end();

 private:
    QByteArray control(const QStringList& command) const;

    void listen();

    Microphone microphone_;
    QTemporaryDir folder_;
    QProcess process_;
    QProcess listener_;  ///< without it speakers that are no device take their time
    QString microphoneModule_;
};

/// How many threads this process has.
int threadCount();

/// How many threads of a process hear or recognise speech.
int soundThreadCount(qint64 process);

}  // namespace tavrelon::testing
