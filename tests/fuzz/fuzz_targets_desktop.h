#pragma once

#include <QByteArray>

/// What other programs of the desktop say, and the pictures that services send.
namespace tavrelon::fuzz {

void readPicture(const QByteArray& bytes);
void readAccessibilityReply(const QByteArray& bytes);
void readWindowClass(const QByteArray& bytes);
void readForeignText(const QByteArray& bytes);
void readSelection(const QByteArray& bytes);

}  // namespace tavrelon::fuzz
