#include "desktop/qt/proxy_inquiry.h"

#include <mutex>
#include <system_error>
#include <thread>

#include "async/waits.h"
#include "platform/web_origin.h"

namespace tavrelon::desktop {

namespace {

QNetworkProxy systemProxy(const QUrl& url) {
    const auto proxies = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url));
    return proxies.value(0, QNetworkProxy::NoProxy);
}

}  // namespace

/// By which a thread gives its answer, unless nobody is there any more.
struct ProxyInquiry::Door {
    std::mutex mutex;
    bool isOpen = true;
    int questions = 0;
};

ProxyInquiry::ProxyInquiry(async::MainLoop& loop, Question question)
    : loop_(loop), question_(question ? std::move(question) : systemProxy), door_(std::make_shared<Door>()) {}

ProxyInquiry::~ProxyInquiry() {
    const std::lock_guard lock(door_->mutex);
    door_->isOpen = false;
}

async::Task<QNetworkProxy> ProxyInquiry::proxyFor(QUrl url) {
    if (platform::isLoopback(url.host()))
        co_return QNetworkProxy::NoProxy;
    try {
        co_return co_await async::raceWithDeadline(loop_, answerLimit, ask(std::move(url)));
    } catch (const async::DeadlineExceeded&) {
        co_return QNetworkProxy::NoProxy;
    }
}

async::Task<QNetworkProxy> ProxyInquiry::ask(QUrl url) {
    co_return co_await async::fromCallback<QNetworkProxy>(loop_, [this, &url](auto resolver) {
        {
            const std::lock_guard lock(door_->mutex);
            if (door_->questions >= mostQuestions) {
                resolver.resolve(QNetworkProxy::NoProxy);
                return resolver;
            }
            ++door_->questions;
        }
        auto answer = [door = door_, question = question_, url, resolver]() mutable {
            const auto proxy = question(url);
            const std::lock_guard lock(door->mutex);
            --door->questions;
            if (door->isOpen)
                resolver.resolve(proxy);
        };
        try {
            std::thread(answer).detach();
        } catch (const std::system_error&) {  // no thread is left: then there is no proxy either
            const std::lock_guard lock(door_->mutex);
            --door_->questions;
            resolver.resolve(QNetworkProxy::NoProxy);
        }
        return resolver;
    });
}

}  // namespace tavrelon::desktop
