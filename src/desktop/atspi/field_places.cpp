#include "desktop/atspi/field_places.h"

#include "desktop/atspi/chain.h"

namespace tavrelon::desktop::atspi {

using platform::AXError;
using platform::AXRect;

namespace {

constexpr quint32 screenCoordinates = 0;
constexpr double caretWidth = 1;

QDBusMessage characterCall(const ObjectReference& field, qint64 offset) {
    return methodCall(field, textInterface, "GetCharacterExtents",
                      {QVariant::fromValue(static_cast<qint32>(offset)), screenCoordinates});
}

QDBusMessage frameCall(const ObjectReference& field) {
    return methodCall(field, componentInterface, "GetExtents", {screenCoordinates});
}

std::optional<AXRect> taken(const AtspiCalls::Reply& reply) {
    const auto rectangle = chain(reply, rectangleOf);
    return rectangle ? std::optional(*rectangle) : std::nullopt;
}

bool contains(const AXRect& frame, const AXRect& part) {
    const double x = part.origin.x + part.size.width / 2;
    const double y = part.origin.y + part.size.height / 2;
    return x >= frame.origin.x && x <= frame.origin.x + frame.size.width && y >= frame.origin.y &&
           y <= frame.origin.y + frame.size.height;
}

/// Where the characters that matter for a range begin, in UTF-16 units.
struct RangePlaces {
    qint64 start = 0;
    qint64 end = 0;
    qint64 before = 0;      ///< the character before the start
    qint64 lineBegins = 0;  ///< behind the last line break before the start
};

RangePlaces placesOf(const QString& value, text::Utf16Range range) {
    RangePlaces places;
    places.start = std::clamp<qint64>(range.location, 0, value.size());
    places.end = std::clamp<qint64>(range.location + range.length, places.start, value.size());
    const bool isPair = places.start > 1 && value.at(places.start - 1).isLowSurrogate();
    places.before = std::max<qint64>(places.start - (isPair ? 2 : 1), 0);
    places.lineBegins = places.start == 0 ? 0 : value.lastIndexOf(u'\n', places.start - 1) + 1;
    return places;
}

}  // namespace

std::optional<AXRect> believableBounds(const ReportedPlaces& reported, bool isCaret, bool isBehindLineBreak) {
    if (!reported.frame || reported.frame->isEmpty())
        return std::nullopt;
    // Plain text editors of Qt place every paragraph where the first one is.
    if (isBehindLineBreak &&
        !(reported.first && reported.linesBefore && reported.linesBefore->origin.y > reported.first->origin.y))
        return std::nullopt;
    auto bounds = reported.text;
    if (isCaret) {
        // Behind the last character some toolkits give nothing, where the right edge of that character serves.
        const bool nothing = !bounds || bounds->size.height <= 0;
        if (nothing && reported.before && !reported.before->isEmpty()) {
            bounds = reported.before;
            bounds->origin.x += bounds->size.width;
        }
        if (bounds)
            bounds->size.width = caretWidth;
    }
    if (!bounds || bounds->isEmpty() || bounds->size.height > reported.frame->size.height ||
        !contains(*reported.frame, *bounds))
        return std::nullopt;
    return bounds;
}

std::expected<AXRect, AXError> FieldPlaces::frameOf(const ObjectReference& field) {
    const auto toolkit = directory_.toolkitOf(field.busName, calls_);
    if (!toolkit)
        return std::unexpected(toolkit.error());
    if (toolkit->places == Places::InWindowOnly)
        return std::unexpected(AXError::AttributeUnsupported);
    return chain(calls_.send(frameCall(field)), rectangleOf);
}

std::expected<AXRect, AXError> FieldPlaces::boundsOf(const ObjectReference& field, const QString& value,
                                                     text::Utf16Range range) {
    const auto toolkit = directory_.toolkitOf(field.busName, calls_);
    if (!toolkit)
        return std::unexpected(toolkit.error());
    if (toolkit->places == Places::InWindowOnly)
        return std::unexpected(AXError::ParameterizedAttributeUnsupported);
    const auto places = placesOf(value, range);
    const auto offset = [&](qint64 utf16) { return toApplicationOffset(value, utf16, toolkit->offsets); };
    const bool isCaret = places.start == places.end;
    const auto textCall =
        isCaret ? characterCall(field, offset(places.start))
                : methodCall(field, textInterface, "GetRangeExtents",
                             {QVariant::fromValue(static_cast<qint32>(offset(places.start))),
                              QVariant::fromValue(static_cast<qint32>(offset(places.end))), screenCoordinates});
    const auto replies = calls_.send({frameCall(field), textCall, characterCall(field, offset(places.before)),
                                      characterCall(field, 0), characterCall(field, offset(places.lineBegins))});
    if (!replies[0])
        return std::unexpected(replies[0].error());
    const bool hasNeighbour = places.start > places.lineBegins;
    const ReportedPlaces reported{.frame = taken(replies[0]),
                                  .text = taken(replies[1]),
                                  .before = hasNeighbour ? taken(replies[2]) : std::nullopt,
                                  .first = taken(replies[3]),
                                  .linesBefore = taken(replies[4])};
    const auto bounds = believableBounds(reported, isCaret, places.lineBegins > 0);
    if (!bounds)
        return std::unexpected(AXError::NoValue);
    return *bounds;
}

}  // namespace tavrelon::desktop::atspi
