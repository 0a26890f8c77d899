#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "text/json.h"

/// The shapes in which the services reply.
namespace tavrelon::testing {

/// The document, or a discarded value for what is no JSON.
text::Json parsedOrNull(const QByteArray& body);

/// A small PNG.
QByteArray picture();
bool isPicture(const QByteArray& body);

/// What services other than chats give when nothing is scripted.
std::optional<QByteArray> usualBody(const QString& path);

/// A chat reply in the shape of the protocol that the path belongs to.
QByteArray chatReply(const QString& path, const QString& content);

/// The text of the last user message in a chat request, in any of the protocols; empty when there is none.
QString lastUserMessage(const QByteArray& body);

}  // namespace tavrelon::testing
