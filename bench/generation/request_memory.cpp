// request-memory: sends 24 frames of 300 KB to a service that reads and forgets, and prints how many bytes went out and
// by how many the process grew at most while it built and sent them.
#include <QCoreApplication>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <cstdio>
#include <fstream>
#include <string>

#include "async/task_scope.h"
#include "desktop/qt/qt_http_session.h"
#include "desktop/qt/qt_main_loop.h"
#include "generation/pollinations_service.h"

namespace tavrelon::bench {
namespace {

class NoLog : public platform::Log {
 public:
    void line(const QString&) override {}
};

/// Answers one chat request after its whole body has come. Lives on a thread of its own.
class Sink : public QObject {
 public:
    quint16 listen() {
        server_.listen(QHostAddress::LocalHost);
        connect(&server_, &QTcpServer::newConnection, this, [this] {
            auto* socket = server_.nextPendingConnection();
            socket->setReadBufferSize(64 * 1024);
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { take(socket); });
        });
        return server_.serverPort();
    }

 private:
    void take(QTcpSocket* socket) {
        auto bytes = socket->readAll();
        if (awaited_ < 0) {
            head_ += bytes;
            const auto end = head_.indexOf("\r\n\r\n");
            if (end < 0)
                return;
            const auto length = head_.toLower().indexOf("content-length:");
            awaited_ = head_.sliced(length + 15, head_.indexOf('\r', length) - length - 15).trimmed().toLongLong();
            bytes = head_.sliced(end + 4);
        }
        awaited_ -= bytes.size();
        const QByteArray reply = R"({"choices":[{"message":{"content":"ok"}}]})";
        if (awaited_ == 0)
            socket->write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(reply.size()) + "\r\n\r\n" +
                          reply);
    }

    QTcpServer server_{this};
    QByteArray head_;
    qint64 awaited_ = -1;
};

qint64 peakBytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:"))
            return std::stoll(line.substr(6)) * 1024;
    }
    return -1;
}

/// Counts what goes out.
class CountingSession : public platform::HttpSession {
 public:
    explicit CountingSession(platform::HttpSession& session) : session_(session) {}
    qint64 sent = 0;

    async::Task<std::expected<platform::HttpResponse, platform::HttpError>> send(
        platform::HttpRequest request) override {
        sent += request.body.size();
        return session_.send(std::move(request));
    }

 private:
    platform::HttpSession& session_;
};

async::Task<void> describe(generation::PollinationsService& gateway, std::vector<QByteArray> frames, int& outcome) {
    try {
        co_await gateway.generateWithNvidia(generation::PollinationsModel::nvidiaNemotron,
                                            {.system = QStringLiteral("Describe."), .user = {}, .maxTokens = 2000},
                                            std::move(frames), generation::Thinking::ForcedOff);
        outcome = 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        outcome = 1;
    }
    QCoreApplication::quit();
}

int measure() {
    QThread thread;
    auto* sink = new Sink;
    sink->moveToThread(&thread);
    QObject::connect(&thread, &QThread::finished, sink, &QObject::deleteLater);
    thread.start();
    quint16 port = 0;
    QMetaObject::invokeMethod(sink, [&] { port = sink->listen(); }, Qt::BlockingQueuedConnection);

    desktop::QtMainLoop loop;
    desktop::QtHttpSession network(loop);
    CountingSession session(network);
    NoLog log;
    auto endpoints = generation::ServiceEndpoints::builtIn();
    endpoints.nvidiaChatCompletionsURL = QStringLiteral("http://127.0.0.1:%1/v1").arg(port);
    endpoints.builtInNvidiaApiKey = QStringLiteral("key");
    generation::PollinationsService gateway(loop, session, log, endpoints);

    std::vector<QByteArray> frames;
    for (int frame = 0; frame < 24; ++frame)
        frames.emplace_back(300'000, static_cast<char>(frame));
    qint64 held = 0;
    for (const auto& frame : frames)
        held += frame.size();
    std::ofstream("/proc/self/clear_refs") << "5";  // the peak begins anew
    const auto before = peakBytes() - held;         // the frames are part of what the request needs
    int outcome = 1;
    async::TaskScope scope(loop);
    scope.spawn(describe(gateway, std::move(frames), outcome));
    QCoreApplication::exec();
    std::printf("%lld %lld\n", static_cast<long long>(session.sent), static_cast<long long>(peakBytes() - before));
    thread.quit();
    thread.wait();
    return outcome;
}

}  // namespace
}  // namespace tavrelon::bench

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    return tavrelon::bench::measure();
}
