#include "text/pieces.h"

#include <QTextBoundaryFinder>

namespace tavrelon::text {

namespace {

/// A cut: where the piece ends, and where the next one begins.
struct Cut {
    qsizetype end;
    qsizetype next;
};

Cut cutOf(QStringView rest) {
    const auto window = rest.first(longestPiece);
    constexpr auto half = longestPiece / 2;  // earlier cuts would make the pieces too many
    if (const auto lineEnd = window.lastIndexOf(u'\n'); lineEnd >= half)
        return {lineEnd, lineEnd + 1};
    if (const auto blank = window.lastIndexOf(u' '); blank >= half)
        return {blank + 1, blank + 1};
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, rest.first(std::min(rest.size(), longestPiece + 64)));
    finder.setPosition(longestPiece);
    auto place = finder.isAtBoundary() ? longestPiece : finder.toPreviousBoundary();
    if (place < half)  // one endless character
        place = longestPiece;
    return {place, place};
}

}  // namespace

std::vector<QString> piecesOf(const QString& text) {
    std::vector<QString> pieces;
    QStringView rest(text);
    while (rest.size() > longestPiece) {
        const auto cut = cutOf(rest);
        pieces.push_back(rest.first(cut.end).toString());
        rest = rest.sliced(cut.next);
    }
    pieces.push_back(rest.toString());
    return pieces;
}

}  // namespace tavrelon::text
