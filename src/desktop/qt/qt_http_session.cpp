#include "desktop/qt/qt_http_session.h"

#include <QNetworkAccessManager>
#include <QNetworkProxy>

#include "async/waits.h"
#include "desktop/qt/qt_http_exchange.h"
#include "platform/web_origin.h"

namespace tavrelon::desktop {

using namespace Qt::StringLiterals;

namespace {

/// The server's proxy, but never for this machine, to which a redirect may lead: a local model server is not reachable
/// through a proxy.
class ProxyChoice : public QNetworkProxyFactory {
 public:
    explicit ProxyChoice(const QNetworkProxy& proxy) : proxy_(proxy) {}
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery& query) override {
        return {platform::isLoopback(query.peerHostName()) ? QNetworkProxy(QNetworkProxy::NoProxy) : proxy_};
    }

 private:
    QNetworkProxy proxy_;
};

}  // namespace

/// Keeps a server's network stack while an exchange runs.
class QtHttpSession::Use {
 public:
    Use(QtHttpSession& session, const QUrl& url)
        : session_(session),
          server_(url.adjusted(QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment)
                      .toString()),
          stack_(session.stacks_[server_]) {
        stack_.idleTimer.reset();
        ++stack_.uses;
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    ~Use() {
        if (--stack_.uses == 0)
            stack_.idleTimer = session_.loop_.after(
                idleLife, [&session = session_, server = server_] { session.stacks_.erase(server); });
    }

    bool hasManager() const { return stack_.manager != nullptr; }
    QNetworkAccessManager& manager() const { return *stack_.manager; }
    void makeManager(const QNetworkProxy& proxy) const {
        if (hasManager())  // another request was quicker
            return;
        stack_.manager = std::make_unique<QNetworkAccessManager>();
        stack_.manager->setProxyFactory(new ProxyChoice(proxy));
        stack_.manager->setAutoDeleteReplies(false);
    }

 private:
    QtHttpSession& session_;
    QString server_;
    Stack& stack_;  // a map keeps its values where they are
};

QtHttpSession::QtHttpSession(async::MainLoop& loop) : loop_(loop) {}

QtHttpSession::~QtHttpSession() = default;

async::Task<std::expected<platform::HttpResponse, platform::HttpError>> QtHttpSession::send(
    platform::HttpRequest request) {
    using Answer = std::expected<platform::HttpResponse, platform::HttpError>;
    const Use use(*this, request.url);
    if (!use.hasManager())
        use.makeManager(co_await proxies_.proxyFor(request.url));
    co_return co_await async::fromCallback<Answer>(loop_, [this, &use, &request](auto resolver) {
        auto exchange = std::make_unique<QtHttpExchange>(
            use.manager(), loop_, std::move(request),
            [resolver](Answer answer) mutable { resolver.resolve(std::move(answer)); });
        exchange->start();
        return exchange;
    });
}

}  // namespace tavrelon::desktop
