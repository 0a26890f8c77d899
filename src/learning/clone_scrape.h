#pragma once

#include <QStringList>
#include <chrono>

#include "platform/http_session.h"

/// The protocol of the scrape service: one POST to "/v0/scrape", one answer. Pure.
namespace tavrelon::learning::clone_scrape {

/// How a page is asked for.
struct Attempt {
    bool onlyMainContent = false;
    bool includeHtml = false;
    int waitFor = 0;  ///< milliseconds that the service lets the page settle
    std::chrono::seconds timeout{0};
};

/// The whole page after its scripts have run; what is asked for when that fails.
inline constexpr Attempt fullAttempt{false, true, 2000, std::chrono::seconds(60)};
inline constexpr Attempt lightAttempt{true, false, 0, std::chrono::seconds(45)};

/// The address of the operation under the base address that the user set. "http://" is put before one without a
/// scheme; what is no address at all means `defaultEndpoint`. Throws `invalidBaseURL` when that is none either.
QUrl scrapeUrl(const QString& baseURL, const QString& defaultEndpoint);

platform::HttpRequest buildRequest(const QUrl& scrapeUrl, const QString& page, const Attempt& attempt);

/// The body of a good answer. Throws `serverError` with the body of any other.
QByteArray bodyOf(const platform::HttpResponse& response);

/// What an answer holds of a page; every text is trimmed and not empty.
struct Page {
    QStringList texts;            ///< title, description, and the body where the service gave it as text
    std::optional<QString> html;  ///< the body, where it is there only as HTML
};

/// Throws `text::JsonError`, `invalidResponse`, or `serverError` when the service reports its own failure.
Page parseScrapeResponse(const QByteArray& data);

}  // namespace tavrelon::learning::clone_scrape
