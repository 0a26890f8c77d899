#include "contract/http_session_fixture.h"

#include <future>

#include "desktop/qt/http_redirect.h"
#include "desktop/qt/proxy_inquiry.h"
#include "support/run_task_on_qt.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

TEST_F(HttpSessionTest, CarriesRequestAndAnswerWhole) {
    const QByteArray body = "{\"text\":\"\xe4\xbd\xa0\xe5\xa5\xbd \\u0000\"}" + QByteArray(300'000, 'b');
    willAnswer(200, "\xff\x00reply");
    const auto answer = send(post(body));
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 200);
    EXPECT_EQ(answer->body, QByteArray("\xff\x00reply"));
    EXPECT_EQ(answer->url, post().url);
    EXPECT_TRUE(std::ranges::any_of(answer->headers, [](const auto& header) {
        return header.first.compare("x-reply", Qt::CaseInsensitive) == 0 && header.second == "here";
    }));
    EXPECT_EQ(requests()[0].body, body);
    EXPECT_EQ(requests()[0].header("Content-Type"), "application/json");
    EXPECT_EQ(requests()[0].header("Authorization"), "Bearer k");
}

TEST_F(HttpSessionTest, AnAddressThatIsNotHttpIsRefusedWithoutTraffic) {
    for (const char* address : {"", "ftp://host/x", "file:///etc/passwd", "host/api/chat", "http:///x", "data:,x"}) {
        const auto answer = send({.url = QUrl(QString::fromLatin1(address))});
        ASSERT_FALSE(answer) << address;
        EXPECT_EQ(answer.error().code, Code::InvalidUrl) << address;
    }
    EXPECT_EQ(requests().size(), 0U);
}

TEST_F(HttpSessionTest, TheBodyCapIsExact) {
    const QByteArray most(platform::HttpSession::bodyCap, 'x');
    willAnswer(200, most);
    const auto whole = send(post("{}"));
    ASSERT_TRUE(whole);
    EXPECT_EQ(whole->body.size(), most.size());
    willAnswer(200, most + "x");
    const auto refused = send(post("{}"));
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().code, Code::BodyTooLarge);
    EXPECT_TRUE(refused.error().description.english.contains(QStringLiteral("64 MiB")));
}

TEST_F(HttpSessionTest, ACancelledTaskEndsTheExchange) {
    willAnswer(200, "late", 10s);
    PendingAnswer pending;
    async::TaskScope scope(loop);
    auto handle = scope.spawn(awaitAnswer(session, post("{}"), pending));
    ASSERT_TRUE(runUntil([&] { return requests().size() == 1; }));
    handle.cancel();
    EXPECT_TRUE(runUntil([&] { return pending.cancelled; }));
    EXPECT_TRUE(runUntil([&] { return abandonedCount() == 1; }));
}

TEST_F(HttpSessionTest, ADroppedTaskEndsTheExchange) {
    willAnswer(200, "late", 10s);
    PendingAnswer pending;
    std::optional<async::TaskScope> scope(std::in_place, loop);
    scope->spawn(awaitAnswer(session, post("{}"), pending));
    ASSERT_TRUE(runUntil([&] { return requests().size() == 1; }));
    scope.reset();
    EXPECT_TRUE(runUntil([&] { return abandonedCount() == 1; }));
    EXPECT_FALSE(pending.ended());
}

TEST_F(HttpSessionTest, ATaskCancelledBeforeItsRequestSendsNothing) {
    PendingAnswer pending;
    async::TaskScope scope(loop);
    scope.spawn(awaitAnswer(session, post("{}"), pending)).cancel();
    EXPECT_TRUE(runUntil([&] { return pending.cancelled; }));
    EXPECT_EQ(requests().size(), 0U);
}

TEST_F(HttpSessionTest, ABodyThatKeepsComingOutlastsTheRequestTimeOut) {
    StandInAnswer slow;
    slow.body = QByteArray(80, 'd');
    slow.dripMs = 150;  // 1.05 s in all
    service.ledger().script({slow});
    auto patient = post();
    patient.requestTimeout = 800ms;
    const auto outcome = send(patient);
    ASSERT_TRUE(outcome) << outcome.error().description.english.toStdString();
    EXPECT_EQ(outcome->body.size(), 80);
}

TEST_F(HttpSessionTest, AServerThatFloodsItsClientHoldsUpNoOther) {
    StandInAnswer flood;
    flood.fillerBytes = qint64{1} << 40;
    flood.raw = "HTTP/1.1 200 OK\r\nX: ";
    service.ledger().setDefault(flood);
    auto impatient = post();
    impatient.requestTimeout = 300ms;
    EXPECT_FALSE(send(impatient));
    auto other = post();
    other.url = QUrl(elsewhere.url(u"/chat"_s));
    EXPECT_TRUE(send(other)) << "the head of the flood has not ended";
}

TEST_F(HttpSessionTest, CookiesAndChallengesStayOutOfTheWay) {
    const StandInAnswer answer{
        .status = 401, .headers = {{"Set-Cookie", "a=b"}, {"WWW-Authenticate", "Basic"}}, .body = "no"};
    const auto refused = sendTo(answer);
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->status, 401);
    EXPECT_EQ(refused->body, "no");
    ASSERT_TRUE(send(post()));
    EXPECT_EQ(requests()[1].header("Cookie"), "");
    EXPECT_EQ(requests()[1].header("User-Agent"), "Tavrelon/1.0");
}

TEST_F(HttpSessionTest, RedirectsKeepTheKeyAndTheBodyWithinTheOrigin) {
    const auto far = elsewhere.url(u"/far"_s).toUtf8();
    service.ledger().script(
        {{.status = 307, .headers = {{"Location", "/moved"}}}, {.status = 308, .headers = {{"Location", far}}}});
    const auto refused = send(post());
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().description,
              u"The server redirected to another one, 127.0.0.1. The request was not sent there."_s);
    EXPECT_EQ(requests()[1].header("Authorization"), "Bearer k");
    EXPECT_EQ(requests()[1].body, "{}");
    EXPECT_TRUE(elsewhere.ledger().requests().empty());

    ASSERT_TRUE(sendTo({.status = 303, .headers = {{"Location", far}}}));
    const auto moved = elsewhere.ledger().requests();
    ASSERT_EQ(moved.size(), 1U);
    EXPECT_EQ(moved[0].method, "GET");
    EXPECT_EQ(moved[0].header("Authorization"), "");
    EXPECT_EQ(moved[0].body, "");
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

    EXPECT_FALSE(desktop::redirected({.url = plain.url, .staysAtOrigin = true}, 302, "https://b.example/y"));
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
