#include "support/fake_http_session.h"

#include <gtest/gtest.h>

#include <QScopeGuard>

namespace tavrelon::testing {

using Code = platform::HttpError::Code;

namespace {

std::unexpected<platform::HttpError> failure(Code code, const char* description) {
    return std::unexpected(platform::HttpError{code, QString::fromLatin1(description)});
}

bool isHttpAddress(const QUrl& url) {
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QLatin1StringView("http") || url.scheme() == QLatin1StringView("https"));
}

}  // namespace

void FakeHttpSession::answer(int status, const QByteArray& body, const QByteArray& contentType) {
    platform::HttpResponse response{.status = status, .body = body};
    if (!contentType.isEmpty())
        response.headers = {{"Content-Type", contentType}};
    answer({std::move(response), {}});
}

void FakeHttpSession::fail(Code code, const QString& description) {
    answer({std::unexpected(platform::HttpError{code, description}), {}});
}

FakeHttpSession::Reply FakeHttpSession::take(const platform::HttpRequest& request) {
    if (!script_.empty()) {
        auto next = std::move(script_.front());
        script_.pop_front();
        return next;
    }
    if (otherwise) {
        if (auto reply = otherwise(request))
            return *reply;
    }
    ADD_FAILURE() << "no answer is scripted for " << request.url.toString().toStdString();
    return {failure(Code::Transport, "No answer is scripted."), {}};
}

async::Task<FakeHttpSession::Outcome> FakeHttpSession::send(platform::HttpRequest request) {
    if (!isHttpAddress(request.url))
        co_return failure(Code::InvalidUrl, "The address is not valid.");
    if ((co_await async::currentCancellation())->requested())
        throw async::CancellationError();
    requests_.push_back(request);
    auto reply = take(request);
    auto guard = qScopeGuard([this] { ++abandoned_; });
    const auto limit = std::min(request.requestTimeout, request.resourceTimeout);
    const bool late = reply.delay > limit;
    co_await async::pause(loop_, late ? limit : reply.delay);
    guard.dismiss();
    if (late)
        co_return failure(Code::TimedOut, "The request timed out.");
    if (reply.outcome) {
        if (reply.outcome->body.size() > bodyCap)
            co_return failure(Code::BodyTooLarge, "The answer is larger than 64 MiB.");
        if (reply.outcome->url.isEmpty())
            reply.outcome->url = request.url;
    }
    co_return std::move(reply.outcome);
}

}  // namespace tavrelon::testing
