#pragma once

#include <QUrl>

#include "generation/pollinations_service.h"
#include "learning/clone_profile.h"
#include "platform/document_reader.h"

namespace tavrelon::learning {

namespace clone_scrape {
struct Attempt;
}

/// What `CloneService::learn` is given: the address of a page, or the samples themselves.
enum class CloneInput : std::uint8_t { Page, Text };

/// Learns how a person writes from samples of it: a page, which a scrape service fetches, or the text of a file. Where
/// the user has set no such service and the default one is not there, the page is fetched as it is. It stores nothing;
/// the caller does, on success alone. Main thread; it outlives the tasks it gives out.
///
/// Operations throw `CloneServiceError` or the error of the service that failed, all of them `text::LocalizedError`.
class CloneService {
 public:
    static constexpr qsizetype minContentLength = 100;   ///< characters
    static constexpr qsizetype maxContentLength = 8000;  ///< characters; the samples are cut there

    /// `baseURL` is the user's address of the scrape service; blank means `defaultEndpoint`.
    CloneService(platform::HttpSession& session, platform::DocumentReader& documents,
                 generation::PollinationsService& pollinationsService, const QString& baseURL, QString defaultEndpoint);

    async::Task<CloneProfile> learn(QString input, CloneInput kind);

    /// The text of a PDF, RTF, HTML or text file, by the ending of its name.
    async::Task<QString> readFileText(QUrl url);

 private:
    async::Task<QString> scrapeContent(QString page);
    async::Task<std::optional<QString>> firstScrape(QString page);
    async::Task<QString> fetchedText(QString page);
    async::Task<QString> scrapedText(QString page, const clone_scrape::Attempt& attempt);
    async::Task<platform::HttpResponse> exchange(platform::HttpRequest request);
    async::Task<CloneProfile> learnProfile(QString samples);

    platform::HttpSession& session_;
    platform::DocumentReader& documents_;
    generation::PollinationsService& pollinationsService_;
    bool wasServiceChosen_;
    QString firecrawlBaseURL_;
    QString defaultEndpoint_;
};

}  // namespace tavrelon::learning
