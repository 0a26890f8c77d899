#pragma once

#include <QString>
#include <vector>

namespace tavrelon::text {

/// The most UTF-16 units of a text that a view lays out at once.
inline constexpr qsizetype longestPiece = 3000;

/// The text cut into pieces that a view can lay out one at a time, at ends of lines where there are any, else between
/// words, else between characters. A line end at which it was cut is in no piece: the next piece begins a new line.
/// A short text is one piece, the empty text too.
std::vector<QString> piecesOf(const QString& text);

}  // namespace tavrelon::text
