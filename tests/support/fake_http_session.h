#pragma once

#include <deque>
#include <functional>

#include "async/waits.h"
#include "platform/http_session.h"

namespace tavrelon::testing {

/// Answers from a script, on the time of its main loop, and keeps what it was asked. A request that finds nothing
/// scripted fails the test.
class FakeHttpSession : public platform::HttpSession {
 public:
    using Outcome = std::expected<platform::HttpResponse, platform::HttpError>;

    struct Reply {
        Outcome outcome;
        std::chrono::nanoseconds delay{0};  ///< past the request's time-outs it becomes one
    };

    explicit FakeHttpSession(async::MainLoop& loop) : loop_(loop) {}

    /// Adds an answer to the script; answers are used in their order. An empty type leaves its header out.
    void answer(int status, const QByteArray& body, const QByteArray& contentType = "application/json");
    void answer(Reply reply) { script_.push_back(std::move(reply)); }
    void neverAnswer() { script_.push_back({platform::HttpResponse{}, std::chrono::hours(24)}); }
    void fail(platform::HttpError::Code code, const QString& description);

    /// Answers what the script does not; nothing given means not handled.
    std::function<std::optional<Reply>(const platform::HttpRequest&)> otherwise;

    const std::vector<platform::HttpRequest>& requests() const { return requests_; }
    std::size_t unused() const { return script_.size(); }
    int abandoned() const { return abandoned_; }  ///< exchanges that were ended before their answer

    async::Task<Outcome> send(platform::HttpRequest request) override;

 private:
    Reply take(const platform::HttpRequest& request);

    async::MainLoop& loop_;
    std::deque<Reply> script_;
    std::vector<platform::HttpRequest> requests_;
    int abandoned_ = 0;
};

}  // namespace tavrelon::testing
