// All that can go wrong between a request and its answer, over real connections. Every call to a service goes through
// this exchange.
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTcpSocket>
#include <fstream>

#include "contract/http_certificate.h"
#include "contract/http_session_fixture.h"

namespace tavrelon::testing {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Fault = StandInAnswer::Fault;

namespace {

constexpr qint64 endless = qint64{1} << 50;
constexpr qint64 overTheCap = qint64{65} * 1024 * 1024;

/// A fault, and what comes of it: "<status> <body>", or the failure in words.
struct Row {
    QString name;
    StandInAnswer answer;
    QString seen;
};

const auto fine = u"200 fine"_s;
const auto lost = u"The network connection was lost."_s;
const auto late = u"The request timed out."_s;
const auto tooLarge = u"The answer of 127.0.0.1 is larger than 64 MiB."_s;
const auto broken = u"The exchange with 127.0.0.1 failed."_s;
const auto notFollowed = u"The server redirected to an address that cannot be followed."_s;

/// The head of a good answer. An empty value leaves the length out.
QByteArray head(const QByteArray& length, const QByteArray& more = {}) {
    return "HTTP/1.1 200 OK\r\n" + more + (length.isEmpty() ? "" : "Content-Length: " + length + "\r\n") + "\r\n";
}

Row raw(const QString& name, const QByteArray& sent, const QString& seen, Fault then = Fault::None) {
    return {name, {.fault = then, .raw = sent}, seen};
}

Row packed(const QString& name, const QByteArray& coding, const QByteArray& bytes, const QString& seen) {
    return raw(name, head(QByteArray::number(bytes.size()), "Content-Encoding: " + coding + "\r\n") + bytes, seen);
}

Row redirect(int status, const QString& to, const QString& seen) {
    return {u"%1 to %2"_s.arg(status).arg(to),
            {.status = status, .headers = {{"Location", to.toUtf8()}}, .body = ""},
            seen};
}

std::vector<Row> connections() {
    const auto inHead = QByteArray("HTTP/1.1 200 OK\r\nContent-Ty");
    const auto inBody = head("4") + "fi";
    return {
        raw(u"it ends before the head"_s, "", lost),
        raw(u"it ends in the head"_s, inHead, lost),
        raw(u"it ends in the body"_s, inBody, lost),
        {u"reset before the head"_s, {.fault = Fault::Reset}, lost},
        raw(u"reset in the head"_s, inHead, lost, Fault::Reset),
        raw(u"reset in the body"_s, inBody, lost, Fault::Reset),
        {u"silence before the head"_s, {.fault = Fault::Stall}, late},
        raw(u"silence in the head"_s, inHead, late, Fault::Stall),
        raw(u"silence in the body"_s, inBody, late, Fault::Stall),
        {u"a body that drips on and on"_s, {.body = QByteArray(400, ' '), .dripMs = 20, .dripPieces = 400}, late},
    };
}

std::vector<Row> headsAndCodings() {
    // Qt's compression has a length before the zlib stream; servers send the stream under "deflate".
    const auto deflated = [](const QByteArray& bytes) { return qCompress(bytes, 9).sliced(4); };
    const QByteArray chunked = "Transfer-Encoding: chunked\r\n";
    return {
        raw(u"a mail server's greeting"_s, "220 mail.example ESMTP\r\n", lost),
        raw(u"bytes at random"_s, QByteArray::fromHex("160301ff00fe0d0a0d0a8081fffe00"), lost),
        raw(u"no number for a status"_s, "HTTP/1.1 abc OK\r\n\r\nfine", lost),
        raw(u"a head line of 64 KiB"_s, head("4", "X: " + QByteArray(1 << 16, 'x') + "\r\n") + "fine", fine),
        raw(u"10 000 head lines"_s, head("4", QByteArray("X: x\r\n").repeated(10'000)) + "fine", fine),
        raw(u"a length of -1"_s, head("-1") + "fine", fine),
        raw(u"a length that is no number"_s, head("ten") + "fine", fine),
        raw(u"a length that is too short"_s, head("2") + "fine", u"200 fi"_s),
        raw(u"no length, the connection ends"_s, head("") + "fine", fine),
        raw(u"100 Continue first"_s, "HTTP/1.1 100 Continue\r\n\r\n" + head("4") + "fine", fine),
        raw(u"HTTP/1.0"_s, "HTTP/1.0" + head("4").sliced(8) + "fine", fine),
        raw(u"chunked"_s, head("", chunked) + "2\r\nfi\r\n2\r\nne\r\n0\r\n\r\n", fine),
        raw(u"chunked, a size that is no number"_s, head("", chunked) + "zz\r\nfine\r\n0\r\n\r\n", u"200 "_s),
        packed(u"gzip"_s, "gzip", QByteArray::fromBase64("H4sIAAAAAAACA8tIzcnJVyjPL8pJAQCFEUoNCwAAAA=="),
               u"200 hello world"_s),
        packed(u"deflated"_s, "deflate", deflated("fine"), fine),
        packed(u"gzip that is none"_s, "gzip", "this is no gzip stream", broken),
        packed(u"128 MiB in 128 KiB"_s, "deflate", deflated(QByteArray(overTheCap * 2, ' ')), broken),
        packed(u"a coding that nobody knows"_s, "x-rot13", "fine", fine),
    };
}

std::vector<Row> statusesAndRedirects(const QString& elsewhere) {
    std::vector<Row> rows{
        {u"204"_s, {.status = 204, .body = ""}, u"204 "_s},
        {u"304"_s, {.status = 304, .body = ""}, u"304 "_s},
        {u"500 with 65 MiB"_s, {.status = 500, .fillerBytes = overTheCap}, tooLarge},
        {u"a body without end"_s, {.fillerBytes = endless, .raw = head("")}, tooLarge},
        redirect(302, elsewhere, u"200 {}"_s),
        redirect(307, elsewhere, u"The server redirected to another one, 127.0.0.1. The request was not sent there."_s),
        redirect(308, u"?again"_s, u"The server redirects without end."_s),
        redirect(302, u"ftp://127.0.0.1/x"_s, notFollowed),
        redirect(302, u"file:///etc/hostname"_s, notFollowed),
        redirect(302, u"http://[::"_s, notFollowed),
    };
    for (const int status : {201, 206, 301, 400, 401, 403, 404, 407, 408, 418, 429, 500, 503, 599, 999})
        rows.push_back({QString::number(status), {.status = status, .body = "why"}, u"%1 why"_s.arg(status)});
    return rows;
}

/// How much the process grew at most since the object was made.
class MemoryPeak {
 public:
    MemoryPeak() {
        std::ofstream("/proc/self/clear_refs") << "5";  // the peak begins anew
        before_ = peakKilobytes();
    }
    qint64 megabytes() const { return (peakKilobytes() - before_) / 1024; }

 private:
    static qint64 peakKilobytes() {
        std::ifstream status("/proc/self/status");
        for (std::string line; std::getline(status, line);) {
            if (line.starts_with("VmHWM:"))
                return std::stoll(line.substr(6));
        }
        throw std::runtime_error("the system does not tell how much memory is used");
    }

    qint64 before_;
};

/// What Qt complains of is a fault of ours, and the user would find it in the log.
void failOnComplaint(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type != QtDebugMsg && type != QtInfoMsg)
        ADD_FAILURE() << "Qt complains: " << text.toStdString();
}

class HttpFaultsTest : public HttpSessionTest {
 public:
    HttpFaultsTest() { qInstallMessageHandler(failOnComplaint); }
    ~HttpFaultsTest() override { qInstallMessageHandler(nullptr); }

    /// Time is short only where it is to run out, since a busy machine is silent now and then.
    QString seen(platform::HttpRequest request, const QString& expected = fine) {
        request.requestTimeout = expected == late ? 400ms : 10'000ms;
        request.resourceTimeout = expected == late ? 3s : 30s;
        const auto outcome = send(std::move(request));
        return outcome ? u"%1 "_s.arg(outcome->status) + QString::fromUtf8(outcome->body)
                       : outcome.error().description.english;
    }
};

}  // namespace

TEST_F(HttpFaultsTest, EndInAnAnswerOrAFailureInWordsAndNeverInAKeyAstray) {
    // Above the largest body there may be, in the copies that reading it takes. The sanitizers keep freed memory.
    constexpr qint64 mostMegabytes = __has_feature(address_sanitizer) ? 600 : 400;
    elsewhere.ledger().setDefault({.body = "{}"});
    const auto far = elsewhere.url(u"/far"_s);
    for (const auto& rows : {connections(), headsAndCodings(), statusesAndRedirects(far)})
        for (const auto& row : rows) {
            SCOPED_TRACE(row.name.toStdString());
            service.ledger().setDefault(row.answer);
            const MemoryPeak memory;
            const auto found = seen(post(), row.seen);
            EXPECT_EQ(found, row.seen);
            EXPECT_FALSE(found.contains(u"secret"_s)) << "an address has a key in it";
            EXPECT_LT(memory.megabytes(), mostMegabytes);
        }
    for (const auto& request : elsewhere.ledger().requests())
        EXPECT_EQ(request.header("Authorization"), "");
}

/// Answers as many requests on a connection as it is told, and cuts it amid the next one.
class CuttingServer : public QTcpServer {
 public:
    CuttingServer(int answered, QByteArray last) : answered_(answered), last_(std::move(last)) {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            auto* socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket, left = answered_]() mutable {
                const auto read = socket->readAll();
                const bool isWhole = read.endsWith("{}");
                wholeRequests += isWhole ? 1 : 0;
                if (left > 0 && isWhole) {
                    --left;
                    socket->write(head("4") + "fine");
                } else if (left == 0) {
                    socket->write(last_);
                    socket->disconnectFromHost();
                }
            });
        });
    }

    int wholeRequests = 0;

 private:
    int answered_;
    QByteArray last_;
};

TEST_F(HttpFaultsTest, ARequestIsSentTwiceOnlyWhereAKeptConnectionHadEnded) {
    auto request = post();
    CuttingServer cutting(0, "");
    request.url.setPort(cutting.serverPort());
    EXPECT_EQ(seen(request), lost);
    EXPECT_EQ(cutting.wholeRequests, 1);
    CuttingServer tired(1, "");
    request.url.setPort(tired.serverPort());
    for (int round = 0; round < 3; ++round)
        EXPECT_EQ(seen(request), fine);
    EXPECT_EQ(tired.wholeRequests, 5) << "the second and the third, each on a kept connection and on one of its own";
    CuttingServer refusing(0, "HTTP/1.1 413 Large\r\nContent-Length: 3\r\n\r\nwhy");
    request.url.setPort(refusing.serverPort());
    request.body = QByteArray(30 << 20, 'x');
    const auto told = seen(request);
    EXPECT_TRUE(told == u"413 why"_s || told == u"127.0.0.1 ended the connection during the upload."_s)
        << told.toStdString();
}

TEST_F(HttpFaultsTest, PeersThatAreNoServices) {
    QSslConfiguration configuration;
    configuration.setLocalCertificate(QSslCertificate(selfSignedCertificate));
    configuration.setPrivateKey(QSslKey(QByteArray(selfSignedKey), QSsl::Ec));
    QSslServer selfSigned;
    selfSigned.setSslConfiguration(configuration);
    QTcpServer plainText;
    QObject::connect(&plainText, &QTcpServer::newConnection, [&plainText] {
        auto* socket = plainText.nextPendingConnection();
        socket->write("HTTP/1.1 400 Bad Request\r\nContent-Length: 0\r\n\r\n");
        socket->disconnectFromHost();
    });
    QTcpServer hangsUp;
    QObject::connect(&hangsUp, &QTcpServer::newConnection,
                     [&hangsUp] { hangsUp.nextPendingConnection()->disconnectFromHost(); });
    QTcpServer silent;
    QTcpServer closed;
    const std::pair<QTcpServer*, QString> peers[] = {
        {&selfSigned,
         u"A secure connection to 127.0.0.1 could not be made: The certificate is self-signed, and untrusted."_s},
        {&plainText, u"A secure connection to 127.0.0.1 could not be made."_s},
        {&hangsUp, lost},
        {&silent, late},
        {&closed, u"Could not connect to 127.0.0.1."_s},
    };
    for (const auto& [server, told] : peers) {
        ASSERT_TRUE(server->listen(QHostAddress::LocalHost));
        auto request = post();
        request.url = QUrl(u"https://127.0.0.1:%1/x?key=secret"_s.arg(server->serverPort()));
        if (server == &closed)
            closed.close();
        EXPECT_EQ(seen(request, told), told);
    }
}

}  // namespace tavrelon::testing
