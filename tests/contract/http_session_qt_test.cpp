#include <gtest/gtest.h>

#include <future>

#include "contract/http_session_qt_driver.h"
#include "desktop/qt/http_redirect.h"
#include "desktop/qt/proxy_inquiry.h"
#include "support/qt_gtest.h"
#include "support/run_task_on_qt.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using Code = platform::HttpError::Code;

class QtHttpSessionTest : public ::testing::Test {
 public:
    QtHttpDriver driver;
    StandInService elsewhere;

    QtHttpDriver::Outcome send(platform::HttpRequest request) {
        PendingAnswer pending;
        async::TaskScope scope(driver.loop);
        scope.spawn(awaitAnswer(driver.session, std::move(request), pending));
        EXPECT_TRUE(driver.runUntil([&] { return pending.ended(); }));
        return pending.outcome.value();
    }
    QtHttpDriver::Outcome sendWith(StandInAnswer answer) {
        driver.service.ledger().script({std::move(answer)});
        return send(request());
    }
    platform::HttpRequest request() const {
        return {.method = "POST",
                .url = driver.url(u"/chat?key=secret"_s),
                .headers = {{"Content-Type", "application/json"}, {"Authorization", "Bearer k"}},
                .body = "{}"};
    }
    static StandInAnswer redirect(int status, const QString& to) {
        StandInAnswer answer;
        answer.status = status;
        answer.headers = {{"Location", to.toUtf8()}};
        return answer;
    }
};

TEST_F(QtHttpSessionTest, BrokenAnswersAreErrorsThatTellNothingOfTheAddress) {
    using Fault = StandInAnswer::Fault;
    StandInAnswer truncated;
    truncated.body = "half";
    truncated.fault = Fault::Truncate;
    StandInAnswer zipped;
    zipped.headers = {{"Content-Encoding", "gzip"}};
    zipped.body = "this is no gzip stream";
    for (const auto& answer : {truncated, zipped, StandInAnswer{.fault = Fault::NotHttp}}) {
        driver.service.ledger().setDefault(answer);  // the network stack asks again when a connection ends early
        const auto outcome = send(request());
        ASSERT_FALSE(outcome) << outcome->body.toStdString();
        EXPECT_FALSE(outcome.error().description.isEmpty());
        EXPECT_FALSE(outcome.error().description.contains(u"secret"_s)) << outcome.error().description.toStdString();
    }
    driver.service.ledger().setDefault({.fault = Fault::Reset});
    const auto lost = send(request());
    ASSERT_FALSE(lost);
    EXPECT_EQ(lost.error().code, Code::Transport);
    EXPECT_EQ(lost.error().description, u"The network connection was lost."_s);
}

TEST_F(QtHttpSessionTest, CompressedAnswersArriveUnpacked) {
    StandInAnswer zipped;
    zipped.headers = {{"Content-Encoding", "gzip"}};
    zipped.body = QByteArray::fromBase64("H4sIAAAAAAACA8tIzcnJVyjPL8pJAQCFEUoNCwAAAA==");
    const auto outcome = sendWith(zipped);
    ASSERT_TRUE(outcome) << outcome.error().description.toStdString();
    EXPECT_EQ(outcome->body, "hello world");
}

TEST_F(QtHttpSessionTest, ABodyThatKeepsComingOutlastsTheRequestTimeOut) {
    StandInAnswer slow;
    slow.body = QByteArray(80, 'd');
    slow.dripMs = 150;  // 1.05 s in all
    driver.service.ledger().script({slow});
    auto patient = request();
    patient.requestTimeout = 800ms;
    const auto outcome = send(patient);
    ASSERT_TRUE(outcome) << outcome.error().description.toStdString();
    EXPECT_EQ(outcome->body.size(), 80);
}

TEST_F(QtHttpSessionTest, AServerThatFloodsItsClientHoldsUpNoOther) {
    StandInAnswer flood;
    flood.fillerBytes = qint64{1} << 40;
    flood.raw = "HTTP/1.1 200 OK\r\nX: ";
    driver.service.ledger().setDefault(flood);
    auto impatient = request();
    impatient.requestTimeout = 300ms;
    EXPECT_FALSE(send(impatient));
    auto other = request();
    other.url = QUrl(elsewhere.url(u"/chat"_s));
    EXPECT_TRUE(send(other)) << "the head of the flood has not ended";
}

TEST_F(QtHttpSessionTest, CookiesAndChallengesStayOutOfTheWay) {
    const StandInAnswer answer{
        .status = 401, .headers = {{"Set-Cookie", "a=b"}, {"WWW-Authenticate", "Basic"}}, .body = "no"};
    const auto refused = sendWith(answer);
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->status, 401);
    EXPECT_EQ(refused->body, "no");
    ASSERT_TRUE(send(request()));
    EXPECT_EQ(driver.requestHeader(1, "Cookie"), "");
    EXPECT_EQ(driver.requestHeader(1, "User-Agent"), "Tavrelon/1.0");
}

TEST_F(QtHttpSessionTest, RedirectsKeepTheKeyAndTheBodyWithinTheOrigin) {
    driver.service.ledger().script({redirect(307, u"/moved"_s), redirect(308, elsewhere.url(u"/far"_s))});
    const auto refused = send(request());
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().description,
              u"The server redirected to another one, 127.0.0.1. The request was not sent there."_s);
    EXPECT_EQ(driver.requestHeader(1, "Authorization"), "Bearer k");
    EXPECT_EQ(driver.requestBody(1), "{}");
    EXPECT_TRUE(elsewhere.ledger().requests().empty());

    driver.service.ledger().script({redirect(303, elsewhere.url(u"/far"_s))});
    ASSERT_TRUE(send(request()));
    const auto far = elsewhere.ledger().requests();
    ASSERT_EQ(far.size(), 1U);
    EXPECT_EQ(far[0].method, "GET");
    EXPECT_EQ(far[0].header("Authorization"), "");
    EXPECT_EQ(far[0].body, "");
}

TEST(HttpRedirectTest, DecidesWhatGoesWhere) {
    const platform::HttpRequest keyed{.method = "POST",
                                      .url = QUrl(u"https://a.example/x"_s),
                                      .headers = {{"authorization", "Bearer k"}, {"Content-Type", "text/plain"}},
                                      .body = "b"};
    const platform::HttpRequest plain{.url = keyed.url, .headers = {{"Accept", "image/*"}}};

    EXPECT_FALSE(desktop::redirected(keyed, 302, "http://a.example/y")) << "the key would travel in the clear";
    EXPECT_FALSE(desktop::redirected({.method = "POST", .url = keyed.url, .body = "b"}, 307, "http://a.example/y"));
    EXPECT_TRUE(desktop::redirected(plain, 302, "http://a.example/y"));
    for (const char* bad : {"file:///etc/passwd", "javascript:x", "http://", "https:///x"})
        EXPECT_FALSE(desktop::redirected(plain, 302, bad)) << bad;

    const auto turned = desktop::redirected(keyed, 303, "../y?z=1");
    ASSERT_TRUE(turned);
    EXPECT_EQ(turned->method, "GET");
    EXPECT_EQ(turned->url, QUrl(u"https://a.example/y?z=1"_s));
    EXPECT_EQ(turned->body, "");
    EXPECT_EQ(turned->headers, (platform::HttpHeaders{{"authorization", "Bearer k"}}));

    auto keyedGet = keyed;
    keyedGet.method = "GET";
    keyedGet.body.clear();
    for (const char* other : {"https://b.example/x", "https://a.example:444/x", "https://sub.a.example/x",
                              "https://a.example@b.example/x", "//b.example/x"}) {
        for (const int status : {307, 308})
            EXPECT_FALSE(desktop::redirected(keyed, status, other)) << other;
        const auto moved = desktop::redirected(keyedGet, 308, other);
        ASSERT_TRUE(moved) << other;
        EXPECT_EQ(moved->headers, (platform::HttpHeaders{{"Content-Type", "text/plain"}})) << other;
    }
    EXPECT_EQ(desktop::redirected(keyed, 308, "https://a.example:443/x")->headers.size(), 2U);
}

TEST(ProxyInquiry, AServersProxyIsFoundWithinABoundAndNeverForThisMachine) {
    desktop::QtMainLoop loop;
    std::promise<void> ends;
    const auto atTheEnd = ends.get_future().share();
    std::atomic<int> questions = 0;
    desktop::ProxyInquiry inquiry(loop, [&questions, atTheEnd](const QUrl& url) {
        ++questions;
        if (url.host() == "hangs.example"_L1)
            atTheEnd.wait();
        return QNetworkProxy(QNetworkProxy::HttpProxy, u"proxy."_s + url.host(), 3128);
    });
    const auto proxyFor = [&](const char* address) {
        return runTaskOnQt(loop, inquiry.proxyFor(QUrl(QLatin1StringView(address)))).hostName();
    };
    EXPECT_EQ(proxyFor("https://service.example/v1"), u"proxy.service.example"_s);
    for (const auto* here : {"http://localhost:11434", "http://127.0.0.1:8080/v1", "http://[::1]/"})
        EXPECT_EQ(proxyFor(here), QString());
    EXPECT_EQ(questions, 1);

    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(proxyFor("https://hangs.example/"), QString());
    EXPECT_LT(std::chrono::steady_clock::now() - before, 10s);
    EXPECT_EQ(proxyFor("https://service.example/v1"), u"proxy.service.example"_s) << "one that hangs holds nobody up";
    ends.set_value();
}

}  // namespace tavrelon::testing
