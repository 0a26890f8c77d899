#pragma once

#include <QThread>
#include <deque>
#include <memory>
#include <mutex>

#include "support/stand_in_service_answer.h"

namespace tavrelon::testing {

/// The scripts and the record of a stand-in service. Any thread.
class StandInLedger {
 public:
    void script(std::vector<StandInAnswer> answers);
    void setDefault(StandInAnswer answer);
    void reset();

    /// Records the request and gives the first scripted answer that fits it, else the default one.
    std::pair<std::size_t, StandInAnswer> receive(const ReceivedRequest& request);
    void markAbandoned(std::size_t index);

    std::vector<ReceivedRequest> requests() const;

 private:
    mutable std::mutex mutex_;
    std::deque<StandInAnswer> script_;
    StandInAnswer default_;
    std::vector<ReceivedRequest> requests_;
    std::size_t forgotten_ = 0;  ///< requests recorded before the last reset
};

class StandInListener;

/// A model service on the loopback interface, on a thread of its own. It speaks the chat protocols of the gateways (an
/// Ollama reply for paths that end in "/api/chat", else a chat completion) and answers by script; without one an
/// image address gives a picture, and a chat "ANSWER".
///
/// Under /control it is steered over HTTP: POST /control/script takes a list of answers, or an object with "answers"
/// and "default"; GET /control/requests gives what came; POST /control/reset forgets both.
class StandInService {
 public:
    /// Listens on `port`, or on a free one for 0. Throws `std::runtime_error` when that fails.
    explicit StandInService(quint16 port = 0);
    ~StandInService();

    quint16 port() const { return port_; }
    QString url(const QString& path = {}) const;

    StandInLedger& ledger() { return ledger_; }

 private:
    StandInLedger ledger_;
    QThread thread_;
    StandInListener* listener_ = nullptr;
    quint16 port_ = 0;
};

}  // namespace tavrelon::testing
