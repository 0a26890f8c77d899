#include "generation/fault_stage.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QScopeGuard>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QTcpSocket>
#include <algorithm>
#include <fstream>

#include "async/task_scope.h"
#include "desktop/documents/picture_pixels.h"
#include "generation/fault_certificate.h"
#include "output/output_writer.h"

namespace tavrelon::testing {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Place = FaultSubject::Place;
using Told = FaultSubject::Told;

namespace {

/// What a request ended in. The slot outlives the task.
struct Ending {
    std::optional<generation::GenerationResult> result;
    QString error;
    bool is() const { return result || !error.isNull(); }
};

async::Task<void> keepEnding(async::Task<generation::GenerationResult> task, Ending& ending) {
    try {
        ending.result = co_await std::move(task);
    } catch (const std::exception& error) {
        ending.error = text::localizedDescription(error);
    }
}

QString nameOf(const QString& path) {
    const auto* subject = faultSubjectOf(path);
    return subject ? subject->title : path;
}

QString lineAfter(const QStringList& lines, const QString& head) {
    for (const auto& line : lines) {
        if (line.startsWith(head))
            return line.sliced(head.size());
    }
    return u"(nothing)"_s;
}

/// What the user gets. A picture goes through the decoder that stands before the clipboard.
QString described(const generation::GenerationResult& result) {
    if (!result.imageData)
        return "the answer: "_L1 + result.text.value_or(QString());
    if (!desktop::picturePixels(*result.imageData).isNull())
        return u"the picture"_s;
    return output::OutputWriterError(output::OutputWriterError::Code::invalidImageData).localizedDescription();
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

/// A text as a table shows it: on one line and not too long.
QString shown(QString text) {
    constexpr qsizetype longest = 160;
    const auto length = text.size();
    if (length > longest)
        text = text.first(longest) + u"… (%1 characters)"_s.arg(length);
    QString line;
    for (const QChar c : text)
        line += c.unicode() < 0x20 ? u"\\x%1"_s.arg(c.unicode(), 2, 16, QChar(u'0')) : QString(c);
    return line.replace(u'|', u"\\|"_s);
}

}  // namespace

struct FaultStage::Run {
    Ending ending;
    QStringList asked;  ///< calls in order, a repeated one once
    QStringList log;
    std::chrono::nanoseconds waited;
};

FaultStage::FaultStage() {
    QSslConfiguration configuration;
    configuration.setLocalCertificate(QSslCertificate(selfSignedCertificate));
    configuration.setPrivateKey(QSslKey(QByteArray(selfSignedKey), QSsl::Ec));
    selfSigned_.setSslConfiguration(configuration);
    QTcpServer closed;
    for (QTcpServer* server : {static_cast<QTcpServer*>(&selfSigned_), &plainText_, &hangsUp_, &silent_, &closed}) {
        if (!server->listen(QHostAddress::LocalHost))
            throw std::runtime_error("a peer cannot listen");
    }
    closedPort_ = closed.serverPort();
    QObject::connect(&plainText_, &QTcpServer::newConnection, [this] {
        auto* socket = plainText_.nextPendingConnection();
        socket->write("HTTP/1.1 400 Bad Request\r\nContent-Length: 0\r\n\r\n");
        socket->disconnectFromHost();
    });
    QObject::connect(&hangsUp_, &QTcpServer::newConnection,
                     [this] { hangsUp_.nextPendingConnection()->disconnectFromHost(); });
    QObject::connect(&silent_, &QTcpServer::newConnection, [this] { ++peerSilences_; });
    heartbeat_.start(1);
}

QString FaultStage::addressFor(const FaultSubject& subject, const Fault& fault) const {
    if (!fault.address.isEmpty())
        return fault.address;
    const auto on = [&subject](QLatin1StringView scheme, quint16 port) {
        return scheme + "://127.0.0.1:"_L1 + QString::number(port) + subject.base;
    };
    switch (fault.peer) {
        case Fault::Peer::Service:
            return service_.url(subject.base);
        case Fault::Peer::Nobody:
            return on("http"_L1, closedPort_);
        case Fault::Peer::SelfSigned:
            return on("https"_L1, selfSigned_.serverPort());
        case Fault::Peer::PlainText:
            return on("https"_L1, plainText_.serverPort());
        case Fault::Peer::HangsUpInHandshake:
            return on("https"_L1, hangsUp_.serverPort());
        case Fault::Peer::SilentInHandshake:
            return on("https"_L1, silent_.serverPort());
    }
    std::unreachable();
}

/// The services before the faulty one fail, those after it answer.
void FaultStage::letTheServicesAnswer(const FaultSubject& subject, const Fault& fault) {
    std::vector<StandInAnswer> answers;
    auto faulty = fault.answer;
    faulty.path = subject.path;
    faulty.standing = true;
    answers.push_back(std::move(faulty));
    if (subject.place == Place::GLMImages || subject.place == Place::Download)
        answers.push_back({.path = u"/gateway/image/"_s, .status = 503, .body = "no drawing today", .standing = true});
    if (subject.place == Place::Download) {
        const auto url = addressFor(subject, fault);
        answers.push_back({.path = u"/glm/images"_s,
                           .body = text::compactJson({{"data", text::Json::array({{{"url", text::toJson(url)}}})}}),
                           .standing = true});
    }
    service_.ledger().reset();
    elsewhere_.ledger().reset();
    service_.ledger().script(std::move(answers));
    elsewhere_.ledger().setDefault(
        {.headers = {{"Content-Type", goodType(subject.shape)}}, .body = goodBody(subject.shape)});
}

bool FaultStage::turnUntil(const CountingSession& session, const std::function<bool()>& done) {
    constexpr int turnsToRead = 40;  // after a silence began, until what was sent before it has arrived
    const QDeadlineTimer end(30'000);
    const auto& ledger = service_.ledger();
    const auto silences = [&] { return ledger.silences() + peerSilences_; };
    const auto silencesBefore = silences();
    auto pieces = ledger.pieces();
    int silentTurns = 0;
    std::size_t kept = 0;  // the exchange that a service keeps waiting
    while (!done()) {
        if (end.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        clock_.runUntilIdle();
        const auto dripped = ledger.pieces() - std::exchange(pieces, ledger.pieces());
        silentTurns += silences() == silencesBefore ? 0 : 1;
        if (kept == 0 && (silentTurns > 0 || dripped > 0))
            kept = session.started();
        if (session.isBusy() && session.started() == kept)
            clock_.advance(silentTurns > turnsToRead ? 10s : 1s * static_cast<int>(dripped));
    }
    return true;
}

FaultStage::Run FaultStage::request(const FaultSubject& subject, const Fault& fault, bool alone) {
    letTheServicesAnswer(subject, fault);
    const auto address = addressFor(subject, fault);
    const auto base = [&](std::initializer_list<Place> places) {
        for (const auto& other : faultSubjects()) {
            if (other.place == *places.begin())
                return std::ranges::find(places, subject.place) != places.end() ? address : service_.url(other.base);
        }
        return QString();
    };
    const generation::ServiceEndpoints endpoints{.pollinationsBaseURL = base({Place::GatewayChat, Place::ImageGet}),
                                                 .glmBaseURL = base({Place::GLMChat, Place::GLMImages}),
                                                 .nvidiaChatCompletionsURL = base({Place::NvidiaChat}),
                                                 .ollamaCloudTagsURL = {},
                                                 .ollamaCloudChatURL = base({Place::OllamaCloud}),
                                                 .ollamaLocalChatURL = {},
                                                 .cloneApiBaseURL = {},
                                                 .builtInPollinationsKey = {},
                                                 .builtInGLMKey = {},
                                                 .builtInNvidiaApiKey = secretPrefix + "nvidia"_L1};
    Run run;
    RecordingLog log;
    desktop::QtHttpSession network(clock_);
    CountingSession session(network);
    generation::PollinationsService gateway(clock_, session, log, endpoints,
                                            {.defaultPollinationsApiKey = secretKeyOf("gateway"_L1),
                                             .glmApiKey = secretKeyOf("glm"_L1),
                                             .nvidiaApiKey = {}});
    configureFor(subject.place, gateway, address, alone);
    const scenes::SceneRouter router;
    generation::TavrelonAIService assistant(gateway, router, log);
    const auto began = clock_.now();
    {
        async::TaskScope scope(clock_);
        scope.spawn(keepEnding(assistant.generate(requestFor(subject.place)), run.ending));
        if (!turnUntil(session, [&run] { return run.ending.is(); }))
            run.ending.error = u"(the request does not end)"_s;
    }
    run.waited = clock_.now() - began;
    run.log = log.lines();
    for (const auto& request : service_.ledger().requests()) {
        const auto name = nameOf(request.path);
        if (run.asked.isEmpty() || run.asked.last() != name)
            run.asked.push_back(name);
    }
    return run;
}

QString FaultStage::keysAstray(const Run& run) const {
    for (const auto& request : elsewhere_.ledger().requests()) {
        if (!request.header("Authorization").isEmpty())
            return u"a key went to another host"_s;
    }
    for (const auto& request : service_.ledger().requests()) {
        const auto key = request.header("Authorization");
        const auto subject = faultSubjectOf(request.path);
        if (!key.isEmpty() && (!subject || key != "Bearer secret-" + subject->key))
            return "a key went to "_L1 + request.path;
    }
    if ((run.ending.error + run.log.join(u'\n')).contains(secretPrefix))
        return u"a key can be read"_s;
    return {};
}

FaultOutcome FaultStage::play(const FaultSubject& subject, const Fault& fault) {
    const MemoryPeak memory;
    const auto run = request(subject, fault, false);
    FaultOutcome outcome{.broken = keysAstray(run)};
    outcome.askedNext = run.asked;
    for (const auto& before : {subject.title, u"Pollinations image"_s, u"GLM images"_s}) {
        if (before != subject.next)
            outcome.askedNext.removeAll(before);
    }
    outcome.answered = run.ending.result && outcome.askedNext.isEmpty();
    if (outcome.answered)
        outcome.told = shown(described(*run.ending.result));
    else if (subject.told == Told::InTheLog)
        outcome.told = shown(lineAfter(run.log, subject.logged));
    else if (subject.told == Told::ToTheUserWhenAlone)
        outcome.told = shown(request(subject, fault, true).ending.error);
    else
        outcome.told = shown(run.ending.error);
    // Whole half minutes: what arrived while the time leapt moves the end of a wait by some leaps.
    if (const auto halfMinutes = run.waited / 30s; halfMinutes > 0)
        outcome.waited = u"%1 s"_s.arg(30 * halfMinutes);
    outcome.peakMegabytes = memory.megabytes();
    return outcome;
}

async::Task<std::expected<platform::HttpResponse, platform::HttpError>> CountingSession::send(
    platform::HttpRequest request) {
    ++started_;
    ++inFlight_;
    const auto leave = qScopeGuard([this] { --inFlight_; });
    co_return co_await session_.send(std::move(request));
}

}  // namespace tavrelon::testing
