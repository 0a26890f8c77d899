#include <gtest/gtest.h>

#include "contract/http_session_qt_driver.h"
#include "support/fake_http_session.h"
#include "support/qt_gtest.h"
#include "support/virtual_main_loop.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;
using Code = platform::HttpError::Code;

class FakeHttpDriver {
 public:
    VirtualMainLoop loop;
    FakeHttpSession session{loop};

    QUrl url(const QString& path) const { return QUrl(QStringLiteral("http://service.example") + path); }

    void willAnswer(int status, const QByteArray& body, std::chrono::milliseconds delay = {}) {
        session.answer(
            {platform::HttpResponse{.status = status, .headers = {{"X-Reply", "here"}}, .body = body, .url = {}},
             delay});
    }
    bool runUntil(const std::function<bool()>& done) {
        for (int i = 0; i < 2000 && !done(); ++i)
            loop.advance(5ms);
        return done();
    }
    std::size_t requestCount() { return session.requests().size(); }
    QByteArray requestHeader(std::size_t index, QByteArrayView name) {
        for (const auto& [key, value] : session.requests().at(index).headers) {
            if (key == name)
                return value;
        }
        return {};
    }
    QByteArray requestBody(std::size_t index) { return session.requests().at(index).body; }
    int abandonedCount() { return session.abandoned(); }
};

template <typename Driver>
class HttpSessionContract : public ::testing::Test {
 public:
    Driver driver;

    platform::HttpRequest post(const QByteArray& body) const {
        return {.method = "POST",
                .url = driver.url(QStringLiteral("/v1/chat/completions")),
                .headers = {{"Content-Type", "application/json"}, {"Authorization", "Bearer k"}},
                .body = body};
    }
    FakeHttpSession::Outcome send(platform::HttpRequest request) {
        PendingAnswer pending;
        async::TaskScope scope(driver.loop);
        scope.spawn(awaitAnswer(driver.session, std::move(request), pending));
        EXPECT_TRUE(driver.runUntil([&] { return pending.ended(); }));
        return pending.outcome.value();
    }
};

using Drivers = ::testing::Types<FakeHttpDriver, QtHttpDriver>;
TYPED_TEST_SUITE(HttpSessionContract, Drivers);

TYPED_TEST(HttpSessionContract, CarriesRequestAndAnswerWhole) {
    auto& driver = this->driver;
    const QByteArray body = "{\"text\":\"\xe4\xbd\xa0\xe5\xa5\xbd \\u0000\"}" + QByteArray(300'000, 'b');
    driver.willAnswer(200, "\xff\x00reply");
    const auto answer = this->send(this->post(body));
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 200);
    EXPECT_EQ(answer->body, QByteArray("\xff\x00reply"));
    EXPECT_EQ(answer->url, driver.url(QStringLiteral("/v1/chat/completions")));
    EXPECT_TRUE(std::ranges::any_of(answer->headers, [](const auto& header) {
        return header.first.compare("x-reply", Qt::CaseInsensitive) == 0 && header.second == "here";
    }));
    EXPECT_EQ(driver.requestBody(0), body);
    EXPECT_EQ(driver.requestHeader(0, "Content-Type"), "application/json");
    EXPECT_EQ(driver.requestHeader(0, "Authorization"), "Bearer k");
}

TYPED_TEST(HttpSessionContract, EveryStatusIsAnAnswerWithItsBody) {
    for (const int status : {201, 204, 400, 401, 404, 407, 418, 429, 500, 503}) {
        this->driver.willAnswer(status, status == 204 ? "" : "the reason");
        const auto answer = this->send(this->post("{}"));
        ASSERT_TRUE(answer) << status << ": " << answer.error().description.toStdString();
        EXPECT_EQ(answer->status, status);
        EXPECT_EQ(answer->body, status == 204 ? "" : "the reason");
    }
    EXPECT_EQ(this->driver.requestCount(), 10U);
}

TYPED_TEST(HttpSessionContract, SilencePastEitherTimeOutIsAnError) {
    for (const auto limit : {&platform::HttpRequest::requestTimeout, &platform::HttpRequest::resourceTimeout}) {
        this->driver.willAnswer(200, "late", 10s);
        auto request = this->post("{}");
        request.*limit = 150ms;
        const auto answer = this->send(request);
        ASSERT_FALSE(answer);
        EXPECT_EQ(answer.error().code, Code::TimedOut);
        EXPECT_FALSE(answer.error().description.isEmpty());
    }
}

TYPED_TEST(HttpSessionContract, AnAddressThatIsNotHttpIsRefusedWithoutTraffic) {
    for (const char* address : {"", "ftp://host/x", "file:///etc/passwd", "host/api/chat", "http:///x", "data:,x"}) {
        const auto answer = this->send({.url = QUrl(QString::fromLatin1(address))});
        ASSERT_FALSE(answer) << address;
        EXPECT_EQ(answer.error().code, Code::InvalidUrl) << address;
    }
    EXPECT_EQ(this->driver.requestCount(), 0U);
}

TYPED_TEST(HttpSessionContract, TheBodyCapIsExact) {
    const QByteArray most(platform::HttpSession::bodyCap, 'x');
    this->driver.willAnswer(200, most);
    const auto whole = this->send(this->post("{}"));
    ASSERT_TRUE(whole);
    EXPECT_EQ(whole->body.size(), most.size());
    this->driver.willAnswer(200, most + "x");
    const auto refused = this->send(this->post("{}"));
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().code, Code::BodyTooLarge);
    EXPECT_TRUE(refused.error().description.contains(QStringLiteral("64 MiB")));
}

TYPED_TEST(HttpSessionContract, ACancelledTaskEndsTheExchange) {
    auto& driver = this->driver;
    driver.willAnswer(200, "late", 10s);
    PendingAnswer pending;
    async::TaskScope scope(driver.loop);
    auto handle = scope.spawn(awaitAnswer(driver.session, this->post("{}"), pending));
    ASSERT_TRUE(driver.runUntil([&] { return driver.requestCount() == 1; }));
    handle.cancel();
    EXPECT_TRUE(driver.runUntil([&] { return pending.cancelled; }));
    EXPECT_TRUE(driver.runUntil([&] { return driver.abandonedCount() == 1; }));
}

TYPED_TEST(HttpSessionContract, ADroppedTaskEndsTheExchange) {
    auto& driver = this->driver;
    driver.willAnswer(200, "late", 10s);
    PendingAnswer pending;
    std::optional<async::TaskScope> scope(std::in_place, driver.loop);
    scope->spawn(awaitAnswer(driver.session, this->post("{}"), pending));
    ASSERT_TRUE(driver.runUntil([&] { return driver.requestCount() == 1; }));
    scope.reset();
    EXPECT_TRUE(driver.runUntil([&] { return driver.abandonedCount() == 1; }));
    EXPECT_FALSE(pending.ended());
}

TYPED_TEST(HttpSessionContract, ATaskCancelledBeforeItsRequestSendsNothing) {
    auto& driver = this->driver;
    PendingAnswer pending;
    async::TaskScope scope(driver.loop);
    scope.spawn(awaitAnswer(driver.session, this->post("{}"), pending)).cancel();
    EXPECT_TRUE(driver.runUntil([&] { return pending.cancelled; }));
    EXPECT_EQ(driver.requestCount(), 0U);
}

TYPED_TEST(HttpSessionContract, ExchangesRunBesideEachOther) {
    auto& driver = this->driver;
    driver.willAnswer(200, "slow", 300ms);
    driver.willAnswer(200, "fast");
    PendingAnswer slow;
    PendingAnswer fast;
    async::TaskScope scope(driver.loop);
    scope.spawn(awaitAnswer(driver.session, this->post("1"), slow));
    ASSERT_TRUE(driver.runUntil([&] { return driver.requestCount() == 1; }));
    scope.spawn(awaitAnswer(driver.session, this->post("2"), fast));
    ASSERT_TRUE(driver.runUntil([&] { return fast.ended(); }));
    EXPECT_FALSE(slow.ended());
    EXPECT_TRUE(driver.runUntil([&] { return slow.ended(); }));
    EXPECT_EQ(slow.outcome->value().body, "slow");
}

}  // namespace tavrelon::testing
