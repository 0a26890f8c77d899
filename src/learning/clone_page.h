#pragma once

#include "platform/http_session.h"

/// Fetching a page without a scrape service: what the server gives to anybody, without its scripts. Pure.
namespace tavrelon::learning::clone_page {

/// "https://" is put before an address without a scheme. Throws `invalidResponse` for what is no address of the web.
platform::HttpRequest buildRequest(const QString& page);

/// The HTML of a good answer, led by what tells its encoding where the server names one. Throws `serverError` with the
/// status of any other, and `invalidResponse` where it is no page.
QByteArray htmlOf(const platform::HttpResponse& response);

/// The same for text that is known to be in UTF-8, whatever it says of itself.
QByteArray htmlInUtf8(const QByteArray& html);

}  // namespace tavrelon::learning::clone_page
