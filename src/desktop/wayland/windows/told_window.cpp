#include "desktop/wayland/windows/told_window.h"

#include <algorithm>
#include <cmath>

namespace tavrelon::desktop {

namespace {

using text::Json;
using text::required;

struct Area {
    int left, top, right, bottom;
};

Area areaOf(const Json& json) {
    const auto number = [&json](const char* key) {
        return static_cast<int>(std::lround(text::doubleFrom(required(json, key))));
    };
    const int left = number("x"), top = number("y");
    return {.left = left, .top = top, .right = left + number("width"), .bottom = top + number("height")};
}

/// The surface, whose shadow is what reaches beyond the frame that the user sees.
platform::WindowPlace placeOf(const Area& surface, const Area& frame) {
    return {.x = surface.left,
            .y = surface.top,
            .width = surface.right - surface.left,
            .height = surface.bottom - surface.top,
            .shadow = {.left = std::max(0, frame.left - surface.left),
                       .right = std::max(0, surface.right - frame.right),
                       .top = std::max(0, frame.top - surface.top),
                       .bottom = std::max(0, surface.bottom - frame.bottom)}};
}

}  // namespace

ToldWindow windowIn(const text::Json& json) {
    const auto textUnder = [&json](const char* key) { return text::stringFrom(required(json, key)); };
    ToldWindow window{.identifier = textUnder("id"),
                      .processIdentifier = text::integerFrom(required(json, "pid")),
                      .applicationId = textUnder("entry"),
                      .windowClass = textUnder("class"),
                      .windowInstance = textUnder("instance"),
                      .title = textUnder("title"),
                      .place = placeOf(areaOf(required(json, "surface")), areaOf(required(json, "frame")))};
    window.place.countsFromItself = text::boolFrom(required(json, "isNative"));
    return window;
}

}  // namespace tavrelon::desktop
