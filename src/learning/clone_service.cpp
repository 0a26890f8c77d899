#include "learning/clone_service.h"

#include <QDir>
#include <QFileInfo>

#include "generation/model_walk.h"
#include "learning/clone_error.h"
#include "learning/clone_page.h"
#include "learning/clone_scrape.h"
#include "text/characters.h"

namespace tavrelon::learning {

using namespace Qt::StringLiterals;
using generation::TransportError;
using Code = CloneServiceError::Code;
using HttpCode = platform::HttpError::Code;

namespace {

constexpr qint64 maxTokens = 1400;
constexpr float temperature = 0.4F;

platform::DocumentFormat formatOf(const QString& path) {
    const auto extension = QFileInfo(path).suffix().toLower();
    if (extension == "pdf"_L1)
        return platform::DocumentFormat::Pdf;
    if (extension == "rtf"_L1 || extension == "rtfd"_L1)
        return platform::DocumentFormat::Rtf;
    if (extension == "html"_L1 || extension == "htm"_L1)
        return platform::DocumentFormat::Html;
    return platform::DocumentFormat::PlainText;
}

}  // namespace

CloneService::CloneService(platform::HttpSession& session, platform::DocumentReader& documents,
                           generation::PollinationsService& pollinationsService, const QString& baseURL,
                           QString defaultEndpoint)
    : session_(session),
      documents_(documents),
      pollinationsService_(pollinationsService),
      wasServiceChosen_(text::trimmedOrAbsent(baseURL).has_value()),
      firecrawlBaseURL_(text::trimmedOrAbsent(baseURL).value_or(defaultEndpoint)),
      defaultEndpoint_(std::move(defaultEndpoint)) {}

async::Task<CloneProfile> CloneService::learn(QString input, CloneInput kind) {
    auto samples = kind == CloneInput::Text ? std::move(input) : co_await scrapeContent(std::move(input));
    samples = text::prefixOfCharacters(samples.simplified(), maxContentLength);
    if (text::characterCount(samples) < minContentLength)
        throw CloneServiceError::contentTooShort(minContentLength);
    co_return co_await learnProfile(std::move(samples));
}

async::Task<QString> CloneService::scrapeContent(QString page) {
    page = text::trimmed(page);
    if (page.isEmpty())
        throw CloneServiceError(Code::invalidResponse);
    if (auto text = co_await firstScrape(page))
        co_return *std::move(text);
    try {
        co_return co_await scrapedText(page, clone_scrape::lightAttempt);
    } catch (const TransportError& error) {
        if (error.code() == HttpCode::TimedOut)
            throw CloneServiceError(Code::scrapeTimeout);
        if (wasServiceChosen_)
            throw;
    }
    // There is no service, and nobody has asked for one.
    co_return co_await fetchedText(page);
}

async::Task<QString> CloneService::fetchedText(QString page) {
    const auto response = co_await exchange(clone_page::buildRequest(page));
    const auto text = co_await documents_.importHtml(clone_page::htmlOf(response));
    if (!text || text->trimmed().isEmpty())
        throw CloneServiceError(Code::invalidResponse);
    co_return text->simplified();
}

/// Whatever goes wrong here, a lighter attempt may do.
async::Task<std::optional<QString>> CloneService::firstScrape(QString page) {
    try {
        co_return co_await scrapedText(std::move(page), clone_scrape::fullAttempt);
    } catch (const async::CancellationError&) {
        throw;
    } catch (const std::exception&) {
        co_return std::nullopt;
    }
}

async::Task<QString> CloneService::scrapedText(QString page, const clone_scrape::Attempt& attempt) {
    const auto url = clone_scrape::scrapeUrl(firecrawlBaseURL_, defaultEndpoint_);
    const auto response = co_await exchange(clone_scrape::buildRequest(url, page, attempt));
    auto found = clone_scrape::parseScrapeResponse(clone_scrape::bodyOf(response));
    if (found.html)
        found.texts
            << (co_await documents_.importHtml(clone_page::htmlInUtf8(found.html->toUtf8()))).value_or(*found.html);
    const auto text = found.texts.join(u'\n').simplified();
    if (text.isEmpty())
        throw CloneServiceError(Code::invalidResponse);
    co_return text;
}

async::Task<platform::HttpResponse> CloneService::exchange(platform::HttpRequest request) {
    auto outcome = co_await session_.send(std::move(request));
    if (outcome)
        co_return *std::move(outcome);
    if (outcome.error().code == HttpCode::NotHttp)
        throw CloneServiceError(Code::invalidResponse);
    throw TransportError(outcome.error());
}

async::Task<CloneProfile> CloneService::learnProfile(QString samples) {
    generation::ChatPrompt prompt{.system = cloneProfilePrompt(),
                                  .user = u"Samples:\n"_s + samples,
                                  .maxTokens = maxTokens,
                                  .temperature = temperature};
    const auto& configuration = pollinationsService_.configuration;
    CloneProfile profile;
    std::exception_ptr lastError;
    generation::WalkSteps steps{
        .accept =
            [&configuration, &profile](generation::PollinationsModel model, const QString& reply) {
                profile = parseCloneProfile(reply);
                profile.source = configuration.sourceName(model);
                return std::optional(reply);
            },
        .failed = [&lastError](generation::PollinationsModel,
                               std::exception_ptr error) { lastError = std::move(error); },
    };
    const auto reply =
        co_await generation::walkModels(pollinationsService_, configuration.ownFirst(configuration.textModels),
                                        std::move(prompt), generation::JsonMode::On, std::move(steps));
    if (reply)
        co_return profile;
    if (lastError)
        std::rethrow_exception(lastError);
    throw CloneServiceError(Code::invalidResponse);
}

async::Task<QString> CloneService::readFileText(QUrl url) {
    const auto path = QDir::cleanPath(url.toLocalFile());  // a folder may be named with a slash behind it
    auto text = co_await documents_.readFile(path, formatOf(path));
    if (text)
        co_return *std::move(text);
    if (text.error().code == platform::DocumentError::Code::Unsupported)
        throw CloneServiceError(Code::unsupportedFile);
    throw text::LocalizedError(text.error().description);
}

}  // namespace tavrelon::learning
