#include "generation/fault_catalogue.h"

#include "support/stand_in_service_replies.h"

namespace tavrelon::testing {

using namespace Qt::StringLiterals;
using ServiceFault = StandInAnswer::Fault;

namespace {

constexpr qint64 endless = qint64{1} << 50;
constexpr qint64 overTheCap = qint64{65} * 1024 * 1024;

/// Faults are put together for one shape of answers.
class Catalogue {
 public:
    Catalogue(AnswerShape shape, QString elsewhere) : shape_(shape), elsewhere_(std::move(elsewhere)) {}

    std::vector<Fault> collect() {
        addConnections();
        addHeads();
        addCodings();
        addStatuses();
        addRedirects();
        addOtherPeers();
        if (isPictureShape(shape_))
            addPictures();
        else
            addDocuments();
        addShapes();
        return std::move(faults_);
    }

 private:
    void add(const QString& name, StandInAnswer answer) {
        faults_.push_back({.name = name, .answer = std::move(answer)});
    }
    void addRaw(const QString& name, const QByteArray& raw, ServiceFault fault = ServiceFault::None) {
        add(name, {.fault = fault, .raw = raw});
    }
    void addBody(const QString& name, const QByteArray& body) {
        add(name, {.headers = {{"Content-Type", goodType(shape_)}}, .body = body});
    }
    void addStatus(int status, const QString& remark = {}, const QByteArray& body = "the reason",
                   const HeaderList& headers = {{"Content-Type", "text/plain"}}) {
        add(u"status %1%2"_s.arg(status).arg(remark), {.status = status, .headers = headers, .body = body});
    }
    void addPeer(const QString& name, Fault::Peer peer) { faults_.push_back({.name = name, .peer = peer}); }
    void addAddress(const QString& address) {
        faults_.push_back({.name = "the address is "_L1 + address, .address = address});
    }

    /// The head of a good answer. An empty value leaves the length out.
    QByteArray head(const QByteArray& length, const QByteArray& more = {}) const {
        auto text = "HTTP/1.1 200 OK\r\nContent-Type: " + goodType(shape_) + "\r\n" + more;
        if (!length.isEmpty())
            text += "Content-Length: " + length + "\r\n";
        return text + "\r\n";
    }
    QByteArray body() const { return goodBody(shape_); }
    QByteArray bodyLength() const { return QByteArray::number(body().size()); }
    static QByteArray chunk(const QByteArray& bytes) {
        return QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n";
    }

    void addConnections();
    void addHeads();
    void addCodings();
    void addStatuses();
    void addRedirects();
    void addOtherPeers();
    void addPictures();
    void addDocuments();
    void addShapes();
    void addChoices();

    AnswerShape shape_;
    QString elsewhere_;
    std::vector<Fault> faults_;
};

void Catalogue::addConnections() {
    const auto half = body().first(body().size() / 2);
    addPeer(u"nobody listens"_s, Fault::Peer::Nobody);
    addRaw(u"the connection ends before the head"_s, "");
    addRaw(u"the connection ends in the head"_s, "HTTP/1.1 200 OK\r\nContent-Ty");
    addRaw(u"the connection ends in the body"_s, head(bodyLength()) + half);
    add(u"reset before the head"_s, {.fault = ServiceFault::Reset});
    addRaw(u"reset in the head"_s, "HTTP/1.1 200 OK\r\nContent-Ty", ServiceFault::Reset);
    addRaw(u"reset in the body"_s, head(bodyLength()) + half, ServiceFault::Reset);
    add(u"silence before the head"_s, {.fault = ServiceFault::Stall});
    addRaw(u"silence in the head"_s, "HTTP/1.1 200 OK\r\nContent-Ty", ServiceFault::Stall);
    addRaw(u"silence in the body"_s, head(bodyLength()) + half, ServiceFault::Stall);
    add(u"the body drips for minutes"_s, {.headers = {{"Content-Type", goodType(shape_)}},
                                          .body = QByteArray(400, ' '),
                                          .dripMs = 2,
                                          .dripPieces = 400});
}

void Catalogue::addHeads() {
    addRaw(u"a mail server's greeting"_s, "220 mail.example ESMTP\r\n");
    addRaw(u"bytes at random"_s, QByteArray::fromHex("160301ff00fe0d0a0d0a8081fffe00"));
    addRaw(u"no number for a status"_s, "HTTP/1.1 abc OK\r\n\r\n" + body());
    addRaw(u"a head line without a colon"_s, "HTTP/1.1 200 OK\r\nnonsense\r\n\r\n" + body());
    addRaw(u"a head line of 64 KiB"_s, head(bodyLength(), "X: " + QByteArray(1 << 16, 'x') + "\r\n") + body());
    addRaw(u"10 000 head lines"_s, head(bodyLength(), QByteArray("X: x\r\n").repeated(10'000)) + body());
    addRaw(u"a length of -1"_s, head("-1") + body());
    addRaw(u"a length that is no number"_s, head("ten") + body());
    addRaw(u"a length that is too short"_s, head("10") + body());
    addRaw(u"no length, the connection ends"_s, head("") + body());
    addRaw(u"100 Continue first"_s, "HTTP/1.1 100 Continue\r\n\r\n" + head(bodyLength()) + body());
    addRaw(u"HTTP/1.0"_s, "HTTP/1.0" + head(bodyLength()).sliced(8) + body());
    addRaw(u"HTTP/7.3"_s, "HTTP/7.3" + head(bodyLength()).sliced(8) + body());
    add(u"no type"_s, {.headers = {{"Content-Type", ""}}, .body = body()});
    add(u"another type"_s, {.headers = {{"Content-Type", "text/html"}}, .body = body()});
}

void Catalogue::addCodings() {
    const QByteArray chunked = "Transfer-Encoding: chunked\r\n";
    const auto half = body().size() / 2;
    addRaw(u"chunked"_s, head("", chunked) + chunk(body().first(half)) + chunk(body().sliced(half)) + "0\r\n\r\n");
    addRaw(u"chunked, a size that is no number"_s, head("", chunked) + "zz\r\n" + body() + "\r\n0\r\n\r\n");
    addRaw(u"chunked, ends early"_s, head("", chunked) + chunk(body().first(half)) + "40\r\nabc");
    faults_.back().dependsOnLuck = true;
    const auto gzip = [this](const QByteArray& bytes) {
        return head(QByteArray::number(bytes.size()), "Content-Encoding: gzip\r\n") + bytes;
    };
    // Qt's compression has a length before the zlib stream; servers send the stream under "deflate".
    const auto packed = qCompress(body()).sliced(4);
    addRaw(u"deflated"_s, head(QByteArray::number(packed.size()), "Content-Encoding: deflate\r\n") + packed);
    addRaw(u"gzip that is none"_s, gzip("this is no gzip stream"));
    addRaw(u"gzip that ends early"_s, gzip(QByteArray::fromHex("1f8b08000000000000034b4c4a")));
    static const auto bomb = qCompress(QByteArray(overTheCap * 2, ' '), 9).sliced(4);
    addRaw(u"128 MiB packed into 128 KiB"_s,
           head(QByteArray::number(bomb.size()), "Content-Encoding: deflate\r\n") + bomb);
    addRaw(u"a coding that nobody knows"_s, head(bodyLength(), "Content-Encoding: x-rot13\r\n") + body());
}

void Catalogue::addStatuses() {
    for (const int status : {201, 206, 300, 400, 403, 404, 407, 408, 413, 418, 429, 500, 599, 999})
        addStatus(status);
    addStatus(204, u" without a body"_s, "");
    addStatus(304, u" without a body"_s, "");
    addStatus(301, u" without an address"_s);
    addStatus(400, u" with the code 1210"_s, R"({"error":{"code":"1210"}})");
    addStatus(401, u" with a challenge"_s, "no", {{"WWW-Authenticate", "Basic realm=\"x\""}});
    addStatus(500, u" in no UTF-8"_s, "\xff\xfe");
    addStatus(500, u" without a body"_s, "");
    addStatus(502, u" with a page"_s, "<html><h1>Bad Gateway</h1></html>", {{"Content-Type", "text/html"}});
    addStatus(503, u" that says when"_s, "later", {{"Retry-After", "3600"}});
    addStatus(500, u" with 1 MiB of text"_s, QByteArray(1 << 20, 'e'));
    add(u"status 500 with 65 MiB"_s, {.status = 500, .fillerBytes = overTheCap});
}

void Catalogue::addRedirects() {
    const auto redirect = [this](const QString& name, int status, const QString& to) {
        add(u"%1 %2"_s.arg(status).arg(name),
            {.status = status, .headers = {{"Location", to.toUtf8()}}, .body = "", .standing = true});
    };
    redirect(u"to another host"_s, 302, elsewhere_);
    redirect(u"to another host"_s, 307, elsewhere_);
    redirect(u"to itself without end"_s, 308, u"?again"_s);
    redirect(u"to ftp:"_s, 302, u"ftp://127.0.0.1/x"_s);
    redirect(u"to file:"_s, 302, u"file:///etc/hostname"_s);
    redirect(u"to no address"_s, 302, u"http://[::"_s);
}

void Catalogue::addOtherPeers() {
    addPeer(u"a certificate that nobody vouches for"_s, Fault::Peer::SelfSigned);
    addPeer(u"no encryption where it was asked for"_s, Fault::Peer::PlainText);
    addPeer(u"the connection ends in the handshake"_s, Fault::Peer::HangsUpInHandshake);
    addPeer(u"silence in the handshake"_s, Fault::Peer::SilentInHandshake);
    for (const auto& address : {u"ftp://127.0.0.1/x"_s, u"file:///etc/hostname"_s, u"no address"_s, u"http://"_s})
        addAddress(address);
}

void Catalogue::addPictures() {
    addBody(u"an empty body"_s, "");
    addBody(u"no picture"_s, "these are words");
    addBody(u"half of a picture"_s, body().first(body().size() / 2));
    addBody(u"NUL bytes"_s, QByteArray(100, '\0'));
    addBody(u"a picture that claims 60 000 by 60 000"_s,
            body().replace(16, 8, QByteArray::fromHex("0000ea600000ea60")));
    add(u"a JSON error under an image's type"_s,
        {.headers = {{"Content-Type", "image/png"}}, .body = R"({"error":"busy"})"});
    add(u"an image's type in capitals"_s, {.headers = {{"Content-Type", "IMAGE/PNG"}}, .body = body()});
    add(u"a type that only begins like an image's"_s, {.headers = {{"Content-Type", "image"}}, .body = body()});
    add(u"65 MiB"_s, {.headers = {{"Content-Type", "image/png"}}, .fillerBytes = overTheCap});
    add(u"a body without end"_s, {.fillerBytes = endless, .raw = head("")});
}

void Catalogue::addDocuments() {
    addBody(u"an empty body"_s, "");
    addBody(u"a page"_s, "<html><body>Welcome to the hotel's network</body></html>");
    addBody(u"half of a document"_s, body().first(body().size() / 2));
    addBody(u"a document and more"_s, body() + "}");
    addBody(u"a byte order mark first"_s, "\xef\xbb\xbf" + body());
    addBody(u"UTF-16"_s, QByteArray("\xff\xfe{\0}\0", 6));
    addBody(u"NUL bytes"_s, QByteArray(100, '\0'));
    addBody(u"no UTF-8 in a text"_s, body().replace("fine", "\xff\xfe"));
    addBody(u"half of a surrogate pair in a text"_s, body().replace("fine", "\\ud800"));
    addBody(u"100 000 brackets"_s, QByteArray(100'000, '['));
    addBody(u"100 000 brackets, closed"_s, QByteArray(100'000, '[') + QByteArray(100'000, ']'));
    addBody(u"100 000 nested objects"_s, QByteArray("{\"a\":").repeated(100'000) + "1" + QByteArray(100'000, '}'));
    addBody(u"a number beyond all numbers"_s, "1e999999");
    addBody(u"a million values and more"_s, "[" + QByteArray("1,").repeated(1'000'001) + "1]");
    add(u"65 MiB"_s, {.fillerBytes = overTheCap});
    add(u"a body without end"_s, {.fillerBytes = endless, .raw = head("")});
    for (const char* other : {"null", "true", "1", "\"text\"", "[]", "{}", R"({"error":{"message":"busy"}})"})
        addBody("the document is "_L1 + QLatin1StringView(other), other);
}

void Catalogue::addChoices() {
    for (const char* choices : {"null", "{}", "\"text\"", "[]", "[1]", "[null]", "[{}]", R"([{"message":null}])",
                                R"([{"message":"text"}])", R"([{"message":[]}])", R"([{"message":{}}])"})
        addBody("choices: "_L1 + QLatin1StringView(choices), QByteArray(R"({"choices":)") + choices + "}");
    for (const char* content :
         {"null", "1", "{}", "[]", R"("")", R"([{"type":"text","text":"fine"}])", R"([1,"text"])", R"("a\u0000b")"})
        addBody("content: "_L1 + QLatin1StringView(content),
                QByteArray(R"({"choices":[{"message":{"content":)") + content + "}}]}");
}

void Catalogue::addShapes() {
    switch (shape_) {
        case AnswerShape::ChatCompletion:
        case AnswerShape::GLMChat:
            return addChoices();
        case AnswerShape::OllamaChat:
            for (const char* reply : {R"({"message":null})", R"({"message":"text"})", R"({"message":{}})",
                                      R"({"message":{"content":null}})", R"({"message":{"content":[]}})",
                                      R"({"message":{"content":""}})", R"({"response":"fine"})", R"({"response":1})",
                                      R"({"error":"model not found"})", R"({"message":{},"error":"busy"})"})
                addBody("the document is "_L1 + QLatin1StringView(reply), reply);
            return;
        case AnswerShape::GLMImages:
            for (const char* data :
                 {"null", "{}", "[]", "\"AAAA\"", "[null]", "[1]", "[[]]", "[{}]", R"([{"b64_json":""}])",
                  R"([{"b64_json":"AAA"}])", R"([{"b64_json":"*AA-AA*"}])",
                  R"([{"b64_json":"data:image/png;base64,AAAA"}])", R"(["data:image/png;base64,AAAA"])",
                  R"([{"url":""}])", R"([{"url":"not an address"}])", R"([{"url":"http://[::"}])",
                  R"([{"url":"file:///etc/hostname"}])", R"([{"url_list":[1]}])"})
                addBody("data: "_L1 + QLatin1StringView(data), QByteArray(R"({"data":)") + data + "}");
            return;
        case AnswerShape::Picture:
        case AnswerShape::Download:
            return;
    }
}

}  // namespace

bool isPictureShape(AnswerShape shape) {
    return shape == AnswerShape::Picture || shape == AnswerShape::Download;
}

QByteArray goodBody(AnswerShape shape) {
    switch (shape) {
        case AnswerShape::ChatCompletion:
        case AnswerShape::GLMChat:
            return chatReply(u"/v1/chat/completions"_s, u"fine"_s);
        case AnswerShape::OllamaChat:
            return chatReply(u"/api/chat"_s, u"fine"_s);
        case AnswerShape::GLMImages:
            return R"({"note":"fine","data":[{"b64_json":")" + picture().toBase64() + R"("}]})";
        case AnswerShape::Picture:
        case AnswerShape::Download:
            return picture();
    }
    std::unreachable();
}

QByteArray goodType(AnswerShape shape) {
    return isPictureShape(shape) ? "image/png" : "application/json";
}

std::vector<Fault> faultsFor(AnswerShape shape, const QString& elsewhere) {
    return Catalogue(shape, elsewhere).collect();
}

}  // namespace tavrelon::testing
