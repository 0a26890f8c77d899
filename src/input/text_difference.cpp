#include "input/text_difference.h"

#include <algorithm>

namespace tavrelon::input {

namespace {

/// How far back from a change its characters are told apart anew, if no line begins there. A character's extent depends
/// on what stands before it, but not on what is so far away.
constexpr qint64 lookBack = 4096;

qint64 commonStart(QStringView a, QStringView b) {
    return std::ranges::mismatch(a, b).in1 - a.begin();
}

qint64 commonEnd(QStringView a, QStringView b) {
    return std::mismatch(a.rbegin(), a.rend(), b.rbegin(), b.rend()).first - a.rbegin();
}

/// The two texts without what both begin with, and without what both end with, but for some characters of each.
struct Middle {
    QStringView before;
    QStringView after;
    qint64 start = 0;
};

Middle middleOf(const QString& oldText, const QString& newText, const TypingAnchors& anchors) {
    auto same = commonStart(oldText, newText);
    const auto& selection = anchors.selectionBefore;
    // What was typed may begin like what stood there, and so before the first difference.
    for (const auto& anchor : {selection ? std::optional(selection->location) : std::nullopt, anchors.caretAfter})
        if (anchor && *anchor >= 0 && *anchor < same && same - *anchor <= lookBack)
            same = *anchor;
    auto start = oldText.lastIndexOf(u'\n', std::max<qint64>(same - 1, 0)) + 1;
    if (start > same || same - start > lookBack)
        start = std::max<qint64>(same - lookBack, 0);
    const QStringView before = QStringView(oldText).sliced(start);
    const QStringView after = QStringView(newText).sliced(start);
    auto end = std::max<qint64>(commonEnd(before, after) - lookBack, 0);
    if (end > 0)  // not within a pair
        end -= before[before.size() - end].isLowSurrogate() ? 1 : 0;
    return {before.chopped(end), after.chopped(end), start};
}

/// The changed stretch of two rows of characters: it begins after `prefix` of them and ends before `suffix` of them.
struct Stretch {
    qint64 prefix = 0;
    qint64 suffix = 0;
};

class Comparison {
 public:
    explicit Comparison(const Middle& middle)
        : old_(text::characters(middle.before)), new_(text::characters(middle.after)) {}

    /// The stretch that begins as late as it can.
    Stretch latest() const {
        const auto prefix = std::ranges::mismatch(old_, new_).in1 - old_.begin();
        // Only what the prefix left may count as the common end, so that the two never overlap.
        const auto longest = std::min(std::ssize(old_), std::ssize(new_)) - prefix;
        const auto end = std::mismatch(old_.rbegin(), old_.rbegin() + longest, new_.rbegin());
        return {prefix, end.first - old_.rbegin()};
    }

    /// Whether the rest is the same in both.
    bool fits(const Stretch& stretch) const {
        const auto room = std::min(std::ssize(old_), std::ssize(new_));
        return stretch.prefix >= 0 && stretch.suffix >= 0 && stretch.prefix + stretch.suffix <= room &&
               std::equal(old_.begin(), old_.begin() + stretch.prefix, new_.begin()) &&
               std::equal(old_.rbegin(), old_.rbegin() + stretch.suffix, new_.rbegin());
    }

    std::optional<qint64> oldIndex(qint64 unit) const { return indexIn(old_, unit); }
    std::optional<qint64> newIndex(qint64 unit) const { return indexIn(new_, unit); }
    qint64 oldCount() const { return std::ssize(old_); }
    qint64 newCount() const { return std::ssize(new_); }

    TextDifference difference(const Stretch& stretch, qint64 start) const {
        TextDifference result{{}, oldCount() - stretch.prefix - stretch.suffix, start};
        for (qint64 i = 0; i < newCount() - stretch.suffix; ++i)
            if (const auto& character = new_[static_cast<std::size_t>(i)]; i < stretch.prefix)
                result.at += character.size();
            else
                result.inserted += character;
        return result;
    }

 private:
    /// The character that begins at this unit, or the end; absent within one.
    static std::optional<qint64> indexIn(const std::vector<QStringView>& row, qint64 unit) {
        qint64 at = 0;
        for (qint64 i = 0; i < std::ssize(row); at += row[static_cast<std::size_t>(i++)].size())
            if (at >= unit)
                return at == unit ? std::optional(i) : std::nullopt;
        return at == unit ? std::optional(std::ssize(row)) : std::nullopt;
    }

    std::vector<QStringView> old_;
    std::vector<QStringView> new_;
};

/// The stretch that the user typed over the selection and behind which the caret stands, or as much of that as holds.
Stretch anchored(const Comparison& comparison, const TypingAnchors& anchors, qint64 start) {
    const auto latest = comparison.latest();
    if (latest.prefix + latest.suffix == comparison.newCount())
        return latest;  // nothing was typed, whatever is selected
    const auto& selection = anchors.selectionBefore;
    const auto from = selection ? comparison.oldIndex(selection->location - start) : std::nullopt;
    const auto to = selection ? comparison.oldIndex(selection->location + selection->length - start) : std::nullopt;
    const auto caret = anchors.caretAfter ? comparison.newIndex(*anchors.caretAfter - start) : std::nullopt;
    if (from && to && caret && *caret > *from && comparison.newCount() - *caret == comparison.oldCount() - *to)
        if (const Stretch typed{*from, comparison.newCount() - *caret}; comparison.fits(typed))
            return typed;
    // No larger than needed, but moved to where the caret is, or where typing began.
    const auto moved = [&](qint64 by) { return Stretch{latest.prefix - by, latest.suffix + by}; };
    if (caret)
        if (const auto stretch = moved(comparison.newCount() - latest.suffix - *caret); comparison.fits(stretch))
            return stretch;
    if (from)
        if (const auto stretch = moved(latest.prefix - *from); comparison.fits(stretch))
            return stretch;
    return latest;
}

}  // namespace

TextDifference textDifference(const QString& oldText, const QString& newText, const TypingAnchors& anchors) {
    const auto middle = middleOf(oldText, newText, anchors);
    const Comparison comparison(middle);
    return comparison.difference(anchored(comparison, anchors, middle.start), middle.start);
}

std::optional<QString> caretWindow(const QString& text, std::optional<text::Utf16Range> selectedRange, qint64 radius) {
    const qint64 length = text.size();
    if (length == 0 || radius < 1)
        return std::nullopt;
    qint64 caret = length;
    if (selectedRange) {
        const auto location = std::clamp<qint64>(selectedRange->location, 0, length);
        caret = std::clamp<qint64>(location + std::clamp<qint64>(selectedRange->length, 0, length), 0, length);
    }
    const auto start = std::max<qint64>(caret - radius, 0);
    const auto end = std::min(caret > length - radius ? length : caret + radius, length);
    if (start >= end)
        return std::nullopt;
    return text.sliced(start, end - start);
}

std::optional<TextDifference> insertion(const capture::AccessibilityTextSnapshot& initial,
                                        const capture::AccessibilityTextSnapshot& current) {
    if (initial.element != current.element || initial.offset != current.offset)
        return std::nullopt;
    TypingAnchors anchors{initial.selectedRange, std::nullopt};
    if (current.selectedRange)
        anchors.caretAfter = current.selectedRange->location + current.selectedRange->length;
    auto difference = textDifference(initial.value, current.value, anchors);
    return text::isBlank(difference.inserted) ? std::nullopt : std::optional(std::move(difference));
}

}  // namespace tavrelon::input
