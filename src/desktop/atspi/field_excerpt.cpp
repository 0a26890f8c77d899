#include "desktop/atspi/field_excerpt.h"

#include <algorithm>

namespace tavrelon::desktop::atspi {

namespace {

/// As many UTF-16 units never hold more than the 20 000 characters that are compared whole.
constexpr qint64 longestExcerpt = 20000;

/// What is told at first leaves room for a request of 4000 units.
constexpr qint64 shortText = 16000;
constexpr qint64 reach = 6000;

qint64 outsideOfPair(const QString& text, qint64 position) {
    const bool splits = position > 0 && position < text.size() && text.at(position).isLowSurrogate();
    return splits ? position - 1 : position;
}

}  // namespace

text::Utf16Range FieldExcerpt::of(const ObjectReference& field, const QString& text, text::Utf16Range selection) {
    const auto caret = selection.location + selection.length;
    if (field != field_ || !keeps(text, caret)) {
        field_ = field;
        const bool whole = text.size() <= shortText;
        before_ = whole ? 0 : outsideOfPair(text, std::max<qint64>(selection.location - reach, 0));
        after_ = whole ? 0 : text.size() - outsideOfPair(text, std::min<qint64>(caret + reach, text.size()));
    }
    return {before_, text.size() - before_ - after_};
}

bool FieldExcerpt::keeps(const QString& text, qint64 caret) const {
    const auto end = text.size() - after_;
    return before_ <= caret && caret <= end && end - before_ <= longestExcerpt;
}

}  // namespace tavrelon::desktop::atspi
