#pragma once

#include "input/generation_retry.h"
#include "platform/log.h"

namespace tavrelon::input {

/// What the history tells of an answer besides what the context and the decision tell.
struct AnswerRecord {
    QString inputText;
    QString outputText;
    std::optional<QString> intent;  ///< where no decision names one
    qint64 retryCount = 0;
};

/// The history entry of an answer. It is stored before the answer is written, so that a write that fails loses
/// neither the request nor the answer.
persistence::HistoryEntry historyEntryOf(const capture::CapturedContext& context,
                                         const generation::GenerationResult& result, AnswerRecord record,
                                         std::chrono::system_clock::time_point now);

/// Lets the log tell from the storing of an answer to the end of its write, however that ends.
class LoggedWrite {
 public:
    explicit LoggedWrite(platform::Log& log) : log_(log) { log_.line(QStringLiteral("[StateMachine] Writing")); }
    LoggedWrite(const LoggedWrite&) = delete;
    LoggedWrite& operator=(const LoggedWrite&) = delete;
    ~LoggedWrite() { log_.line(QStringLiteral("[StateMachine] Writing ended")); }

 private:
    platform::Log& log_;
};

}  // namespace tavrelon::input
