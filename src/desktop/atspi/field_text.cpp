#include "desktop/atspi/field_text.h"

#include <algorithm>
#include <vector>

namespace tavrelon::desktop::atspi {

namespace {

constexpr QChar filler(0xFEFF);

bool isPairAt(const QString& text, qint64 index) {
    return text.at(index).isHighSurrogate() && index + 1 < text.size() && text.at(index + 1).isLowSurrogate();
}

}  // namespace

Toolkit toolkitNamed(const QString& name) {
    Toolkit toolkit;
    if (name == QLatin1String("Qt")) {
        toolkit.offsets = OffsetUnit::Utf16;
        toolkit.insertLength = LengthUnit::Utf16;
    } else if (name == QLatin1String("Gecko")) {
        toolkit.offsets = OffsetUnit::Utf16WithFillers;
        toolkit.editing = Editing::OnlyClaimsToWork;
        toolkit.inDisplayPixels = InDisplayPixels::Texts;
        toolkit.richText = RichText::EmbeddedObjects;
    } else if (name == QLatin1String("Chromium")) {
        toolkit.inDisplayPixels = InDisplayPixels::TextsAndFields;
        toolkit.selectionEnds = SelectionEnds::ConvertedTwice;
        toolkit.richText = RichText::EmbeddedObjects;
    } else if (name == QLatin1String("GTK")) {  // GTK 4; GTK 3 calls itself gtk
        toolkit.showing = ShowingState::NeverSet;
        toolkit.places = Places::InWindowOnly;
    }
    return toolkit;
}

QString shownText(const QString& sent, OffsetUnit unit) {
    if (unit != OffsetUnit::Utf16WithFillers)
        return sent;
    QString shown;
    shown.reserve(sent.size());
    for (qint64 i = 0; i < sent.size(); ++i) {
        shown.append(sent.at(i));
        const bool afterPair = i > 0 && isPairAt(sent, i - 1);
        if (afterPair && i + 1 < sent.size() && sent.at(i + 1) == filler)
            ++i;
    }
    return shown;
}

qint64 toApplicationOffset(const QString& shown, qint64 utf16, OffsetUnit unit) {
    const qint64 within = std::clamp<qint64>(utf16, 0, shown.size());
    // A filler stands for the second unit of its pair, so the application's count is that of UTF-16.
    if (unit != OffsetUnit::CodePoints)
        return within;
    qint64 offset = 0;
    for (qint64 i = 0; i < within; i += isPairAt(shown, i) ? 2 : 1)
        ++offset;
    return offset;
}

qint64 toUtf16Offset(const QString& shown, qint64 offset, OffsetUnit unit) {
    if (unit != OffsetUnit::CodePoints)
        return std::clamp<qint64>(offset, 0, shown.size());
    qint64 index = 0;
    for (qint64 i = 0; i < offset && index < shown.size(); ++i)
        index += isPairAt(shown, index) ? 2 : 1;
    return index;
}

namespace {

text::Utf16Range between(qint64 one, qint64 other) {
    const auto [start, end] = std::minmax(one, other);
    return {start, end - start};
}

/// The code points that, taken for UTF-16, lie within a pair. Their conversion fails, and with it that of both ends.
std::vector<qint64> inconvertible(const QString& shown) {
    std::vector<qint64> found;
    const auto points = toApplicationOffset(shown, shown.size(), OffsetUnit::CodePoints);
    for (qint64 i = 1; i <= points && i < shown.size(); ++i)
        if (isPairAt(shown, i - 1))
            found.push_back(i);
    return found;
}

std::optional<text::Utf16Range> selectionConvertedTwice(const QString& shown, const ReportedSelection& reported) {
    const auto position = [&](qint64 point) { return toUtf16Offset(shown, point, OffsetUnit::CodePoints); };
    if (!reported.ends || !reported.caret)
        return std::nullopt;
    if (reported.ends->first != reported.ends->second)
        return between(position(position(reported.ends->first)), position(position(reported.ends->second)));
    // The conversion failed. If it was not the caret's, it was that of the other end, which may leave one place for it.
    const auto candidates = inconvertible(shown);
    if (candidates.size() != 1 || candidates.front() == *reported.caret)
        return std::nullopt;
    return between(position(*reported.caret), position(candidates.front()));
}

}  // namespace

std::optional<text::Utf16Range> selectionOf(const QString& shown, const ReportedSelection& reported,
                                            const Toolkit& toolkit) {
    const auto position = [&](qint64 offset) { return toUtf16Offset(shown, offset, toolkit.offsets); };
    if (toolkit.selectionEnds == SelectionEnds::ConvertedTwice && reported.count.value_or(0) > 0)
        return selectionConvertedTwice(shown, reported);
    const bool selects = reported.ends && reported.ends->first >= 0 && reported.ends->second >= 0 &&
                         reported.ends->first != reported.ends->second;
    if (!selects) {
        // With nothing selected some say caret..caret, some 0..0 and some give an error; the caret is always right.
        if (reported.caret && *reported.caret >= 0)
            return text::Utf16Range{position(*reported.caret), 0};
        if (!reported.ends || reported.ends->first < 0)
            return std::nullopt;
        return text::Utf16Range{position(reported.ends->first), 0};
    }
    const auto [start, end] = std::minmax(reported.ends->first, reported.ends->second);
    return between(position(start), position(end));
}

qint64 insertLength(const QString& inserted, LengthUnit unit) {
    return unit == LengthUnit::Utf8Bytes ? inserted.toUtf8().size() : inserted.size();
}

}  // namespace tavrelon::desktop::atspi
