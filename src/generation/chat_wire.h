#pragma once

#include <QUrl>
#include <optional>
#include <vector>

#include "platform/http_session.h"
#include "text/json.h"

/// What the chat protocols have in common on the wire. Pure.
namespace tavrelon::generation::chat_wire {

/// A time without a moving byte after which a chat request is given up.
inline constexpr std::chrono::seconds requestTimeout{60};

/// The address, absent when the text does not form one.
std::optional<QUrl> formUrl(const QString& text);

text::Json message(const char* role, text::Json content);
text::Json textPart(const QString& text);

/// The pictures of one request. In its document each is only a mark; the base64 is written straight into the bytes that
/// are sent, so that a large picture is there once and not four times.
class Pictures {
 public:
    /// The JPEG as a data URL, and as bare base64: values for the document.
    text::Json dataUrl(const QByteArray& jpeg);
    text::Json base64(const QByteArray& jpeg);

    /// {"type": "image_url", ...} with the JPEG as a data URL.
    text::Json part(const QByteArray& jpeg);

    /// The document with the pictures in their places, without white space.
    QByteArray write(const text::Json& document) const;

 private:
    struct Picture {
        QLatin1StringView head;
        QByteArray jpeg;
    };

    text::Json mark(QLatin1StringView head, const QByteArray& jpeg);

    std::vector<Picture> pictures_;
};

/// A POST of the document with the key, as `authorize` puts it in.
platform::HttpRequest jsonPost(const QUrl& url, const std::optional<QString>& key, const text::Json& body,
                               const Pictures& pictures = {});

/// "Authorization: Bearer" and the trimmed key, appended only when there is one. Throws `KeyRefused` for one with a
/// control character, and for an address at which others could read it.
void authorize(platform::HttpRequest& request, const std::optional<QString>& key);

/// The reply without the thoughts that some models write before it, between "<think>" and "</think>". Thoughts that do
/// not end are all there is, and stay.
QString withoutThoughts(const QString& reply);

/// The beginning of the body in one line, or "Unknown error" when it is no UTF-8.
QString errorText(const QByteArray& body);

/// The document of an answer with status 200. Any other status is an `apiError` with the body, a body that is no JSON
/// a `JsonError`.
text::Json document(const platform::HttpResponse& response);

/// The "content" of the first choice's message; null when the document has another shape or no such key.
const text::Json* firstChoiceContent(const text::Json& document);

}  // namespace tavrelon::generation::chat_wire
