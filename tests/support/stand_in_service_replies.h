#pragma once

#include <QByteArray>
#include <QString>

/// The shapes in which the services reply.
namespace tavrelon::testing {

/// A small PNG.
QByteArray picture();
bool isPicture(const QByteArray& body);

/// A chat reply in the shape of the protocol that the path belongs to.
QByteArray chatReply(const QString& path, const QString& content);

}  // namespace tavrelon::testing
