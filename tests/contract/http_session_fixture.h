#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <functional>

#include "async/task_scope.h"
#include "desktop/qt/qt_http_session.h"
#include "desktop/qt/qt_main_loop.h"
#include "support/qt_gtest.h"
#include "support/stand_in_service.h"

namespace tavrelon::testing {

/// Awaits one answer and keeps it, or notes the cancellation.
struct PendingAnswer {
    std::optional<std::expected<platform::HttpResponse, platform::HttpError>> outcome;
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

/// The session of the program before the stand-in service.
class HttpSessionTest : public ::testing::Test {
 public:
    using Outcome = std::expected<platform::HttpResponse, platform::HttpError>;
    using Code = platform::HttpError::Code;

    desktop::QtMainLoop loop;
    desktop::QtHttpSession session{loop};
    mutable StandInService service;
    StandInService elsewhere;

    void willAnswer(int status, const QByteArray& body, std::chrono::milliseconds delay = {}) {
        service.ledger().script({{.status = status,
                                  .headers = {{"X-Reply", "here"}},
                                  .body = body,
                                  .delayMs = static_cast<int>(delay.count())}});
    }
    platform::HttpRequest post(const QByteArray& body = "{}") const {
        return {.method = "POST",
                .url = QUrl(service.url(QStringLiteral("/v1/chat/completions?key=secret"))),
                .headers = {{"Content-Type", "application/json"}, {"Authorization", "Bearer k"}},
                .body = body};
    }
    Outcome send(platform::HttpRequest request) {
        PendingAnswer pending;
        async::TaskScope scope(loop);
        scope.spawn(awaitAnswer(session, std::move(request), pending));
        EXPECT_TRUE(runUntil([&] { return pending.ended(); }));
        return pending.outcome.value();
    }
    Outcome sendTo(StandInAnswer answer) {
        service.ledger().script({std::move(answer)});
        return send(post());
    }

    /// Turns the event loop until `done`, at most for a generous while; gives whether it came true.
    bool runUntil(const std::function<bool()>& done) {
        const QDeadlineTimer end(20'000);
        while (!done() && !end.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
        return done();
    }

    std::vector<ReceivedRequest> requests() const { return service.ledger().requests(); }
    std::ptrdiff_t abandonedCount() const { return std::ranges::count(requests(), true, &ReceivedRequest::abandoned); }
};

}  // namespace tavrelon::testing
