#pragma once

#include <QSslServer>
#include <QTcpServer>
#include <QTimer>

#include "desktop/qt/qt_http_session.h"
#include "generation/fault_subjects.h"
#include "support/recording_log.h"
#include "support/virtual_main_loop.h"

namespace tavrelon::testing {

/// What came of one request that met one fault.
struct FaultOutcome {
    bool answered = false;     ///< the call counts as a success
    QStringList askedNext{};   ///< the calls after the faulty one
    QString told{};            ///< the failure in words
    QString waited{};          ///< for how long, when it was for a while
    QString broken{};          ///< what must never happen and did; empty when all is well
    qint64 peakMegabytes = 0;  ///< how much the process grew, services included
};

/// Counts the exchanges of the session that it passes them to.
class CountingSession : public platform::HttpSession {
 public:
    explicit CountingSession(platform::HttpSession& session) : session_(session) {}

    std::size_t started() const { return started_; }
    bool isBusy() const { return inFlight_ > 0; }

    async::Task<std::expected<platform::HttpResponse, platform::HttpError>> send(
        platform::HttpRequest request) override;

 private:
    platform::HttpSession& session_;
    std::size_t started_ = 0;
    int inFlight_ = 0;
};

/// The assistant with all its services on the loopback interface. Its time stands still but where a service keeps
/// it waiting: then it leaps from timer to timer, so that minutes of silence cost nothing.
class FaultStage {
 public:
    FaultStage();

    QString elsewhereAddress() const { return elsewhere_.url(QStringLiteral("/far")); }

    FaultOutcome play(const FaultSubject& subject, const Fault& fault);

 private:
    struct Run;

    Run request(const FaultSubject& subject, const Fault& fault, bool alone);
    void letTheServicesAnswer(const FaultSubject& subject, const Fault& fault);
    QString addressFor(const FaultSubject& subject, const Fault& fault) const;
    bool turnUntil(const CountingSession& session, const std::function<bool()>& done);
    QString keysAstray(const Run& run) const;

    mutable StandInService service_;
    mutable StandInService elsewhere_;
    QSslServer selfSigned_;
    QTcpServer plainText_;
    QTcpServer hangsUp_;
    QTcpServer silent_;
    QTimer heartbeat_;  ///< lets a wait for events end
    VirtualMainLoop clock_;
    std::size_t peerSilences_ = 0;
    quint16 closedPort_ = 0;
};

}  // namespace tavrelon::testing
