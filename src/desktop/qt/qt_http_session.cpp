#include "desktop/qt/qt_http_session.h"

#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkProxy>

#include "async/waits.h"
#include "desktop/qt/qt_http_exchange.h"

namespace tavrelon::desktop {

using namespace Qt::StringLiterals;

namespace {

/// The environment's proxy, but never for this machine: a local model server is not reachable through a proxy.
class ProxyChoice : public QNetworkProxyFactory {
 public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery& query) override {
        const auto host = query.peerHostName();
        if (host == "localhost"_L1 || QHostAddress(host).isLoopback())
            return {QNetworkProxy::NoProxy};
        return systemProxyForQuery(query);
    }
};

}  // namespace

/// Keeps the network stack while an exchange runs.
class QtHttpSession::Use {
 public:
    explicit Use(QtHttpSession& session) : session_(session) {
        session_.idleTimer_.reset();
        ++session_.uses_;
        if (session_.manager_)
            return;
        session_.manager_ = std::make_unique<QNetworkAccessManager>();
        session_.manager_->setProxyFactory(new ProxyChoice);
        session_.manager_->setAutoDeleteReplies(false);
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    ~Use() {
        if (--session_.uses_ == 0)
            session_.idleTimer_ = session_.loop_.after(idleLife, [&session = session_] { session.manager_.reset(); });
    }

 private:
    QtHttpSession& session_;
};

QtHttpSession::QtHttpSession(async::MainLoop& loop) : loop_(loop) {}

QtHttpSession::~QtHttpSession() = default;

async::Task<std::expected<platform::HttpResponse, platform::HttpError>> QtHttpSession::send(
    platform::HttpRequest request) {
    using Answer = std::expected<platform::HttpResponse, platform::HttpError>;
    const Use use(*this);
    co_return co_await async::fromCallback<Answer>(loop_, [this, &request](auto resolver) {
        auto exchange = std::make_unique<QtHttpExchange>(
            *manager_, loop_, std::move(request),
            [resolver](Answer answer) mutable { resolver.resolve(std::move(answer)); });
        exchange->start();
        return exchange;
    });
}

}  // namespace tavrelon::desktop
