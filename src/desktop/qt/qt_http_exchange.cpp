#include "desktop/qt/qt_http_exchange.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QSslError>

#include "desktop/qt/http_error_text.h"
#include "desktop/qt/http_redirect.h"
#include "desktop/qt/one_time_upload.h"

namespace tavrelon::desktop {

using namespace Qt::StringLiterals;
using Code = platform::HttpError::Code;

namespace {

bool isHttpAddress(const QUrl& url) {
    return url.isValid() && !url.host().isEmpty() && (url.scheme() == "http"_L1 || url.scheme() == "https"_L1);
}

/// How much may come before it is read. Without a bound a fast server fills the memory before it meets the cap.
constexpr qint64 mostUnread = 1024 * 1024;

QNetworkRequest networkRequest(const platform::HttpRequest& request) {
    QNetworkRequest network(request.url);
    network.setHeader(QNetworkRequest::UserAgentHeader, u"Tavrelon/1.0"_s);
    for (const auto& [name, value] : request.headers)
        network.setRawHeader(name, value);
    network.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    network.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    network.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    network.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    network.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    network.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    return network;
}

/// Now and then Qt takes an answer for whole whose connection was reset amid its body. Where the body was compressed
/// Qt drops its length, and nothing can be told.
bool brokeOff(const QNetworkReply& reply, qint64 received) {
    return received < reply.header(QNetworkRequest::ContentLengthHeader).toLongLong();
}

}  // namespace

QtHttpExchange::QtHttpExchange(QNetworkAccessManager& manager, async::MainLoop& loop, platform::HttpRequest request,
                               std::move_only_function<void(Answer)> finished)
    : manager_(manager), loop_(loop), request_(std::move(request)), finished_(std::move(finished)) {}

QtHttpExchange::~QtHttpExchange() {
    dropReply();
}

void QtHttpExchange::start() {
    if (!isHttpAddress(request_.url))
        return fail(Code::InvalidUrl, {u"The address is not valid."_s, u"地址无效。"_s});
    wholeTimer_ = loop_.after(request_.resourceTimeout,
                              [this] { fail(Code::TimedOut, {u"The request timed out."_s, u"请求超时。"_s}); });
    sendRequest();
}

void QtHttpExchange::sendRequest() {
    noteActivity();
    auto network = networkRequest(request_);
    if (request_.method == "GET") {
        reply_ = manager_.get(network);
    } else {
        network.setHeader(QNetworkRequest::ContentLengthHeader, request_.body.size());
        network.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
        upload_ = new OneTimeUpload(request_.body);
        reply_ = manager_.sendCustomRequest(network, request_.method, upload_);
        upload_->setParent(reply_);  // which reads it as long as it lives
        connect(reply_, &QNetworkReply::socketStartedConnecting, upload_, [this] { upload_->noteNewConnection(); });
    }
    // A bound that is set before the head is there has no effect on an upload.
    connect(reply_, &QNetworkReply::metaDataChanged, this, [this] { reply_->setReadBufferSize(mostUnread); });
    connect(reply_, &QNetworkReply::uploadProgress, this, [this] { noteActivity(); });
    connect(reply_, &QNetworkReply::encrypted, this, [this] { noteActivity(); });
    connect(reply_, &QNetworkReply::readyRead, this, [this] { readBody(); });
    connect(reply_, &QNetworkReply::sslErrors, this, [this](const QList<QSslError>& errors) {
        if (!errors.isEmpty())
            tlsFault_ = errors.first().errorString();
    });
    connect(reply_, &QNetworkReply::finished, this, [this] { readAnswer(); });
    watchActivity();
}

void QtHttpExchange::watchActivity() {
    const auto quiet = loop_.now() - lastActivity_;
    if (quiet >= request_.requestTimeout)
        return fail(Code::TimedOut, {u"The request timed out."_s, u"请求超时。"_s});
    activityTimer_ = loop_.after(request_.requestTimeout - quiet, [this] { watchActivity(); });
}

void QtHttpExchange::readBody() {
    noteActivity();
    body_ += reply_->readAll();
    if (body_.size() > platform::HttpSession::bodyCap)
        fail(Code::BodyTooLarge,
             text::LocalizedText(u"The answer of %1 is larger than 64 MiB."_s, u"%1 的回答超过 64 MiB。"_s)
                 .arg(request_.url.host()));
}

void QtHttpExchange::readAnswer() {
    readBody();
    if (!reply_)
        return;
    const int status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const auto error = reply_->error();
    const bool whole = error == QNetworkReply::NoError || (status >= 400 && isStatusError(error));
    if (status <= 0 || !whole)
        return finish(std::unexpected(failure(error)));
    if (isRedirect(status) && reply_->hasRawHeader("Location"))
        return follow(status);
    if (brokeOff(*reply_, body_.size()))
        return finish(std::unexpected(httpError(QNetworkReply::RemoteHostClosedError, request_.url, tlsFault_)));
    const auto pairs = reply_->rawHeaderPairs();
    finish(platform::HttpResponse{
        .status = status, .headers = {pairs.begin(), pairs.end()}, .body = std::move(body_), .url = request_.url});
}

platform::HttpError QtHttpExchange::failure(QNetworkReply::NetworkError error) const {
    const bool isCut = error == QNetworkReply::RemoteHostClosedError || error == QNetworkReply::UnknownNetworkError;
    if (isCut && upload_ && upload_->wasCutShort())
        return {Code::Transport,
                text::LocalizedText(u"%1 ended the connection during the upload."_s, u"%1 在上传期间断开了连接。"_s)
                    .arg(request_.url.host())};
    if (isCut && upload_ && upload_->wasRefused())
        error = QNetworkReply::RemoteHostClosedError;
    return httpError(error, request_.url, tlsFault_);
}

void QtHttpExchange::follow(int status) {
    auto next = redirected(request_, status, reply_->rawHeader("Location"));
    if (next && ++redirects_ > mostRedirects)
        next = std::unexpected(platform::HttpError{
            Code::Transport, {u"The server redirects without end."_s, u"服务器的重定向没有尽头。"_s}});
    if (!next)
        return finish(std::unexpected(next.error()));
    dropReply();
    body_.clear();
    request_ = std::move(*next);
    sendRequest();
}

void QtHttpExchange::dropReply() {
    if (!reply_)
        return;
    auto* reply = reply_.data();
    reply_.clear();
    reply->disconnect(this);
    reply->abort();
    // Qt's network thread may have sent word of an error already, and an aborted reply takes that for a fault of Qt's.
    QCoreApplication::removePostedEvents(reply, QEvent::MetaCall);
    reply->deleteLater();
}

void QtHttpExchange::fail(Code code, const text::LocalizedText& description) {
    finish(std::unexpected(platform::HttpError{code, description}));
}

void QtHttpExchange::finish(Answer answer) {
    activityTimer_.reset();
    wholeTimer_.reset();
    dropReply();
    if (auto finished = std::exchange(finished_, nullptr))
        finished(std::move(answer));
}

}  // namespace tavrelon::desktop
