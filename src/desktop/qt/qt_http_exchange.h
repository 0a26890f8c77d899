#pragma once

#include <QNetworkReply>
#include <QPointer>
#include <functional>

#include "async/main_loop.h"
#include "desktop/qt/one_time_upload.h"
#include "platform/http_session.h"

class QNetworkAccessManager;

namespace tavrelon::desktop {

/// One exchange on the wire with its redirects, from `start` to the single call of `finished`. Destroying it before
/// ends the exchange; nothing is called afterwards. Main thread.
class QtHttpExchange : public QObject {
 public:
    using Answer = std::expected<platform::HttpResponse, platform::HttpError>;

    QtHttpExchange(QNetworkAccessManager& manager, async::MainLoop& loop, platform::HttpRequest request,
                   std::move_only_function<void(Answer)> finished);
    ~QtHttpExchange() override;

    void start();

 private:
    void sendRequest();
    void noteActivity() { lastActivity_ = loop_.now(); }
    void watchActivity();
    void readBody();
    void readAnswer();
    platform::HttpError failure(QNetworkReply::NetworkError error) const;
    void follow(int status);
    void dropReply();
    void fail(platform::HttpError::Code code, const text::LocalizedText& description);
    void finish(Answer answer);

    QNetworkAccessManager& manager_;
    async::MainLoop& loop_;
    platform::HttpRequest request_;
    std::move_only_function<void(Answer)> finished_;
    QPointer<OneTimeUpload> upload_;
    QPointer<QNetworkReply> reply_;
    QByteArray body_;
    QString tlsFault_;
    int redirects_ = 0;
    async::Instant lastActivity_;
    async::Timer activityTimer_;
    async::Timer wholeTimer_;
};

}  // namespace tavrelon::desktop
