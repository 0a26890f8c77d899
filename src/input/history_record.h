#pragma once

#include <functional>

#include "async/lifetime.h"
#include "input/generation_retry.h"
#include "platform/platform.h"

namespace tavrelon::input {

/// What the history tells of an answer besides what the context and the decision tell.
struct AnswerRecord {
    QString inputText;
    QString outputText;
    std::optional<QString> intent;  ///< where no decision names one
};

persistence::HistoryEntry historyEntryOf(const capture::CapturedContext& context, const RetriedResult& answered,
                                         AnswerRecord record, std::chrono::system_clock::time_point now);

/// Stores an answer beside its write: in the first wait of that, which a storage device takes a part of, or when it
/// ends, however it ends. A write that fails so loses neither the request nor the answer. The log tells from the begin
/// to the end of both.
class StoredWrite {
 public:
    using Store = std::function<void()>;

    /// What `store` refers to outlives this object.
    StoredWrite(platform::Platform& platform, Store store);

    /// Stores `entry` in the history.
    StoredWrite(const InputServices& services, persistence::HistoryEntry entry);
    StoredWrite(const StoredWrite&) = delete;
    StoredWrite& operator=(const StoredWrite&) = delete;
    ~StoredWrite();

 private:
    void storeOnce();

    platform::Log& log_;
    Store store_;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::input
