#pragma once

#include <QString>
#include <map>
#include <memory>

#include "async/main_loop.h"
#include "desktop/qt/proxy_inquiry.h"
#include "platform/http_session.h"

class QNetworkAccessManager;

namespace tavrelon::desktop {

/// HTTP/1.1 and HTTP/2 on Qt's network stack. No cookies, no cache; the proxy is the desktop's, asked for when a
/// stack is built, except for the machine itself, which is always reached directly. Each server has a stack of its own,
/// because one that floods its client can hold up a whole stack. It is built at the first request and given back a
/// minute after the last one, so that an idle process does not hold threads, connections and certificates.
class QtHttpSession : public platform::HttpSession {
 public:
    static constexpr std::chrono::seconds idleLife{60};

    explicit QtHttpSession(async::MainLoop& loop);
    ~QtHttpSession() override;

    async::Task<std::expected<platform::HttpResponse, platform::HttpError>> send(
        platform::HttpRequest request) override;

 private:
    class Use;

    struct Stack {
        std::unique_ptr<QNetworkAccessManager> manager;
        int uses = 0;
        async::Timer idleTimer;
    };

    async::MainLoop& loop_;
    ProxyInquiry proxies_{loop_};
    std::map<QString, Stack> stacks_;  ///< by scheme, host and port
};

}  // namespace tavrelon::desktop
