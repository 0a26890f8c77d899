#pragma once

#include <QString>

// What is left of a text that another program or a service chose, before people, prompts or programs get it.
namespace tavrelon::text {

/// The text without control characters but line feed and tab. Its lines stay: of CR LF the LF does.
QString withoutControls(const QString& text);

/// The text in one line without control and format characters, among them those that turn the direction of what
/// follows, and no longer than `characters`. What ends a line, and a tab, becomes a space.
QString oneLine(const QString& text, qsizetype characters);

/// An answer as it may be written, pasted or put on the clipboard: without controls, and without bidirectional controls
/// that are not closed in their line or close nothing.
QString writableAnswer(const QString& text);

}  // namespace tavrelon::text
