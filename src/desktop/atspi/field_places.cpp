#include "desktop/atspi/field_places.h"

#include <algorithm>
#include <cmath>

#include "desktop/atspi/chain.h"

namespace tavrelon::desktop::atspi {

using platform::AXError;
using platform::AXPoint;
using platform::AXRect;

namespace {

constexpr quint32 screenCoordinates = 0, windowCoordinates = 1;
constexpr double widestBorder = 32;
constexpr double roundings = 2;
constexpr double caretWidth = 1;

QDBusMessage characterCall(const ObjectReference& field, qint64 offset, quint32 coordinates) {
    return methodCall(field, textInterface, "GetCharacterExtents",
                      {QVariant::fromValue(static_cast<qint32>(offset)), coordinates});
}

QDBusMessage frameCall(const ObjectReference& element, quint32 coordinates) {
    return methodCall(element, componentInterface, "GetExtents", {coordinates});
}

AXRect onScreen(const AXRect& told, double scale, AXPoint origin) {
    return {{told.origin.x / scale + origin.x, told.origin.y / scale + origin.y},
            {told.size.width / scale, told.size.height / scale}};
}

std::optional<AXRect> taken(const AtspiCalls::Reply& reply, double scale, AXPoint origin) {
    const auto told = chain(reply, rectangleOf);
    return told ? std::optional(onScreen(*told, scale, origin)) : std::nullopt;
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

std::optional<AXPoint> originOfWindow(const platform::WindowPlace& place, const std::vector<AXRect>& frames) {
    using Shadow = platform::WindowPlace::Shadow;
    const auto& shadow = place.shadow;
    for (const auto& frame : frames) {
        const double aroundX = place.width - frame.size.width;
        const double aroundY = place.height - frame.size.height;
        if (frame.origin != AXPoint{0, 0})
            continue;
        if (aroundX == shadow.left + shadow.right && aroundY == shadow.top + shadow.bottom)
            return AXPoint{static_cast<double>(place.x + shadow.left), static_cast<double>(place.y + shadow.top)};
        if (shadow == Shadow() && aroundX == aroundY && aroundX >= 0 && aroundX <= 2 * widestBorder)
            return AXPoint{place.x + aroundX / 2, place.y + aroundY / 2};
    }
    return std::nullopt;
}

bool knowsPlaceOfWindow(const platform::WindowPlace& place, const std::vector<AXRect>& frames) {
    const auto& shadow = place.shadow;
    const double left = place.x + shadow.left + roundings, top = place.y + shadow.top + roundings;
    const double right = place.x + place.width - shadow.right - roundings;
    const double bottom = place.y + place.height - shadow.bottom - roundings;
    return frames.empty() || std::ranges::any_of(frames, [&](const AXRect& frame) {
               return frame.origin.x <= left && frame.origin.x + frame.size.width >= right && frame.origin.y <= top &&
                      frame.origin.y + frame.size.height >= bottom;
           });
}

std::expected<std::vector<AXRect>, AXError> FieldPlaces::windowsOf(const QString& busName, quint32 coordinates) {
    const ObjectReference application{busName, QLatin1String(rootPath)};
    const auto windows = chain(calls_.send(methodCall(application, accessibleInterface, "GetChildren")), objectsOf);
    if (!windows)
        return std::unexpected(windows.error());
    std::vector<QDBusMessage> questions;
    for (const auto& window : *windows)
        questions.push_back(frameCall(window, coordinates));
    std::vector<AXRect> frames;
    for (const auto& reply : calls_.send(questions))
        if (const auto frame = chain(reply, rectangleOf); frame && !frame->isEmpty())
            frames.push_back(*frame);
    return frames;
}

std::expected<FieldPlaces::Coordinates, AXError> FieldPlaces::coordinatesOf(const QString& busName,
                                                                            const Toolkit& toolkit) {
    const auto place = workspace_.frontmostWindowPlace();
    // One that does not know where its window is takes that for the screen's corner. Chromium's places within the
    // window then still count from the page, whatever bars lie above it.
    const auto kind = toolkit.places == Places::OnScreen ? screenCoordinates : windowCoordinates;
    const auto windows = windowsOf(busName, kind);
    if (!windows)
        return std::unexpected(windows.error());
    std::optional<AXPoint> origin;
    if (kind == windowCoordinates || (place && place->countsFromItself))
        origin = place ? originOfWindow(*place, *windows) : std::nullopt;
    else if (!place || knowsPlaceOfWindow(*place, *windows))
        origin = AXPoint{0, 0};
    if (!origin)
        return std::unexpected(AXError::AttributeUnsupported);
    const double scale = place && place->countsFromItself ? place->scale : 1;
    // Whether a client draws in that scale or in the next whole one is not told.
    if (toolkit.inDisplayPixels != InDisplayPixels::Nothing && (scale < 1 || scale != std::floor(scale)))
        return std::unexpected(AXError::AttributeUnsupported);
    return Coordinates{.kind = kind,
                       .origin = *origin,
                       .fieldScale = toolkit.inDisplayPixels == InDisplayPixels::TextsAndFields ? scale : 1,
                       .textScale = toolkit.inDisplayPixels != InDisplayPixels::Nothing ? scale : 1};
}

std::expected<AXRect, AXError> FieldPlaces::frameOf(const ObjectReference& field) {
    const auto coordinates = chain(directory_.toolkitOf(field.busName, calls_),
                                   [&](const Toolkit& toolkit) { return coordinatesOf(field.busName, toolkit); });
    if (!coordinates)
        return std::unexpected(coordinates.error());
    return mapped(chain(calls_.send(frameCall(field, coordinates->kind)), rectangleOf),
                  [&](const AXRect& frame) { return onScreen(frame, coordinates->fieldScale, coordinates->origin); });
}

std::expected<AXRect, AXError> FieldPlaces::boundsOf(const ObjectReference& field, const QString& value,
                                                     text::Utf16Range range) {
    const auto toolkit = directory_.toolkitOf(field.busName, calls_);
    if (!toolkit)
        return std::unexpected(toolkit.error());
    const auto coordinates = coordinatesOf(field.busName, *toolkit);
    if (!coordinates)
        return std::unexpected(coordinates.error());
    const auto& [kind, origin, fieldScale, textScale] = *coordinates;
    const auto places = placesOf(value, range);
    const auto offset = [&](qint64 utf16) { return toApplicationOffset(value, utf16, toolkit->offsets); };
    const bool isCaret = places.start == places.end;
    const auto textCall = isCaret ? characterCall(field, offset(places.start), kind)
                                  : methodCall(field, textInterface, "GetRangeExtents",
                                               {QVariant::fromValue(static_cast<qint32>(offset(places.start))),
                                                QVariant::fromValue(static_cast<qint32>(offset(places.end))), kind});
    const auto replies =
        calls_.send({frameCall(field, kind), textCall, characterCall(field, offset(places.before), kind),
                     characterCall(field, 0, kind), characterCall(field, offset(places.lineBegins), kind)});
    if (!replies[0])
        return std::unexpected(replies[0].error());
    const bool hasNeighbour = places.start > places.lineBegins;
    const ReportedPlaces reported{.frame = taken(replies[0], fieldScale, origin),
                                  .text = taken(replies[1], textScale, origin),
                                  .before = hasNeighbour ? taken(replies[2], textScale, origin) : std::nullopt,
                                  .first = taken(replies[3], textScale, origin),
                                  .linesBefore = taken(replies[4], textScale, origin)};
    const auto bounds = believableBounds(reported, isCaret, places.lineBegins > 0);
    if (!bounds)
        return std::unexpected(AXError::NoValue);
    return *bounds;
}

}  // namespace tavrelon::desktop::atspi
