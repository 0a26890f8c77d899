#pragma once

#include <QProperty>
#include <QString>

namespace tavrelon::media {

/// Turns what the microphone hears into text while it records. Main thread.
class SpeechRecognizer {
 public:
    virtual ~SpeechRecognizer() = default;

    /// Throws a `text::LocalizedError` for the user when recording cannot start.
    virtual void startRecording() = 0;

    /// Ends the recording; a final transcript may still arrive.
    virtual void stopRecording() = 0;

    /// Ends the recording and drops what was heard.
    virtual void cancelRecording() = 0;

    /// What was understood so far.
    virtual QBindable<QString> bindableCurrentTranscript() = 0;
};

}  // namespace tavrelon::media
