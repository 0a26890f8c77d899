#pragma once

#include <QNetworkProxy>
#include <QUrl>
#include <functional>
#include <memory>

#include "async/main_loop.h"
#include "async/task.h"

namespace tavrelon::desktop {

/// Finds out by which proxy a server is reached. The desktop's configuration may name a script on another host, which
/// the library fetches and waits for without a bound; so each question has a thread of its own, which is left behind
/// when the answer does not come in time. Main thread.
class ProxyInquiry {
 public:
    using Question = std::function<QNetworkProxy(const QUrl&)>;  ///< asked on another thread

    static constexpr std::chrono::milliseconds answerLimit{2000};
    static constexpr int mostQuestions = 4;  ///< that hang at the same time; more are not asked

    explicit ProxyInquiry(async::MainLoop& loop, Question question = {});
    ProxyInquiry(const ProxyInquiry&) = delete;
    ProxyInquiry& operator=(const ProxyInquiry&) = delete;
    ~ProxyInquiry();

    /// No proxy for the machine itself, without a question, and where no answer comes in time.
    async::Task<QNetworkProxy> proxyFor(QUrl url);

 private:
    struct Door;

    async::Task<QNetworkProxy> ask(QUrl url);

    async::MainLoop& loop_;
    Question question_;
    std::shared_ptr<Door> door_;
};

}  // namespace tavrelon::desktop
