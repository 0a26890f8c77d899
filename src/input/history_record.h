#pragma once

#include "input/generation_retry.h"

namespace tavrelon::input {

/// What the history tells of an answer besides what the context and the decision tell.
struct AnswerRecord {
    QString inputText;
    QString outputText;
    std::optional<QString> intent;  ///< where no decision names one
    qint64 retryCount = 0;
};

/// The history entry of an answer that has just been written.
persistence::HistoryEntry historyEntryOf(const capture::CapturedContext& context,
                                         const generation::GenerationResult& result, AnswerRecord record,
                                         std::chrono::system_clock::time_point now);

}  // namespace tavrelon::input
