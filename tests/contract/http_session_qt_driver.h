#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <functional>

#include "async/task_scope.h"
#include "desktop/qt/qt_http_session.h"
#include "desktop/qt/qt_main_loop.h"
#include "support/stand_in_service.h"

namespace tavrelon::testing {

/// The real session against the stand-in service.
class QtHttpDriver {
 public:
    using Outcome = std::expected<platform::HttpResponse, platform::HttpError>;

    desktop::QtMainLoop loop;
    desktop::QtHttpSession session{loop};
    StandInService service;

    QUrl url(const QString& path) const { return QUrl(service.url(path)); }

    void willAnswer(int status, const QByteArray& body, std::chrono::milliseconds delay = {}) {
        StandInAnswer answer;
        answer.status = status;
        answer.body = body;
        answer.headers = {{"X-Reply", "here"}};
        answer.delayMs = static_cast<int>(delay.count());
        service.ledger().script({answer});
    }

    /// Turns the event loop until `done`, at most for a generous while; gives whether it came true.
    bool runUntil(const std::function<bool()>& done) {
        const QDeadlineTimer end(20'000);
        while (!done() && !end.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
        return done();
    }

    std::size_t requestCount() { return service.ledger().requests().size(); }
    QByteArray requestHeader(std::size_t index, QByteArrayView name) {
        return service.ledger().requests().at(index).header(name);
    }
    QByteArray requestBody(std::size_t index) { return service.ledger().requests().at(index).body; }
    int abandonedCount() {
        int count = 0;
        for (const auto& request : service.ledger().requests())
            count += request.abandoned ? 1 : 0;
        return count;
    }
};

/// Awaits one answer and keeps it, or notes the cancellation.
struct PendingAnswer {
    std::optional<QtHttpDriver::Outcome> outcome;
    bool cancelled = false;
    bool ended() const { return outcome || cancelled; }
};
inline async::Task<void> awaitAnswer(platform::HttpSession& session, platform::HttpRequest request,
                                     PendingAnswer& slot) {
    try {
        slot.outcome = co_await session.send(std::move(request));
    } catch (const async::CancellationError&) {
        slot.cancelled = true;
    }
}

}  // namespace tavrelon::testing
