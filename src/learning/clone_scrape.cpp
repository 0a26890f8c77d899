#include "learning/clone_scrape.h"

#include <algorithm>

#include "learning/clone_error.h"
#include "text/json.h"

namespace tavrelon::learning::clone_scrape {

using namespace Qt::StringLiterals;
using text::Json;
using Code = CloneServiceError::Code;

namespace {

constexpr std::chrono::seconds resourceTimeout{90};

/// "host:3002" has a scheme only on paper, so a host is asked for as well.
std::optional<QUrl> addressFrom(const QString& text) {
    QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty() || url.host().isEmpty())
        return std::nullopt;
    return url;
}

/// "data" where it is a record or a list of records, else the answer itself.
const Json& recordOf(const Json& answer) {
    const auto* data = text::find(answer, "data");
    if (data && data->is_object())
        return *data;
    const bool list = data && data->is_array() && !data->empty() &&
                      std::ranges::all_of(*data, [](const Json& one) { return one.is_object(); });
    return list ? data->front() : answer;
}

}  // namespace

QUrl scrapeUrl(const QString& baseURL, const QString& defaultEndpoint) {
    const auto typed = baseURL.trimmed();
    auto url = addressFrom(typed);
    if (!url && !typed.isEmpty())
        url = addressFrom(u"http://"_s + typed);
    if (!url)
        url = addressFrom(defaultEndpoint);
    if (!url)
        throw CloneServiceError(Code::invalidBaseURL);
    auto path = url->path();
    if (path.endsWith(u'/'))
        path.chop(1);
    url->setPath(path + u"/v0/scrape"_s);
    if (!url->isValid())
        throw CloneServiceError(Code::invalidBaseURL);
    return *url;
}

platform::HttpRequest buildRequest(const QUrl& scrapeUrl, const QString& page, const Attempt& attempt) {
    const Json body = {{"url", text::toJson(page)},
                       {"pageOptions",
                        {{"onlyMainContent", attempt.onlyMainContent},
                         {"includeHtml", attempt.includeHtml},
                         {"waitFor", attempt.waitFor}}}};
    return {.method = "POST",
            .url = scrapeUrl,
            .headers = {{"Content-Type", "application/json"}, {"Accept", "application/json"}},
            .body = text::compactJson(body),
            .requestTimeout = attempt.timeout,
            .resourceTimeout = resourceTimeout};
}

QByteArray bodyOf(const platform::HttpResponse& response) {
    if (response.status >= 200 && response.status <= 299)
        return response.body;
    throw CloneServiceError::serverError(response.body.isValidUtf8() ? QString::fromUtf8(response.body)
                                                                     : u"HTTP "_s + QString::number(response.status));
}

Page parseScrapeResponse(const QByteArray& data) {
    const auto answer = text::parseJson(data);
    if (!answer.is_object())
        throw CloneServiceError(Code::invalidResponse);
    if (const auto* success = text::find(answer, "success"); success && success->is_boolean() && !success->get<bool>())
        throw CloneServiceError::serverError(text::firstText(answer, {"error", "message"}).value_or(QString()));

    const auto& record = recordOf(answer);
    Page page;
    if (const auto* metadata = text::find(record, "metadata"); metadata && metadata->is_object())
        for (const char* key : {"title", "description"})
            if (auto found = text::firstText(*metadata, {key}))
                page.texts << *std::move(found);
    if (auto body = text::firstText(record, {"markdown", "content", "text"}))
        page.texts << *std::move(body);
    else
        page.html = text::firstText(record, {"html"});
    return page;
}

}  // namespace tavrelon::learning::clone_scrape
