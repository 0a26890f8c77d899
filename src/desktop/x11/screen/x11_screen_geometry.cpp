#include "desktop/x11/screen/x11_screen_geometry.h"

#include <xcb/randr.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace tavrelon::desktop {

namespace {

constexpr int deepestNesting = 32;
constexpr std::string_view ownShadowName = "_GTK_FRAME_EXTENTS";

/// How far the shadow reaches that a client draws around itself: left, right, top, bottom.
using Shadow = std::array<int, 4>;

Shadow decodeShadow(const xcb_get_property_reply_t* reply) {
    Shadow shadow{};
    if (!reply || reply->format != 32 || xcb_get_property_value_length(reply) != sizeof(Shadow))
        return shadow;
    std::memcpy(shadow.data(), xcb_get_property_value(reply), sizeof(shadow));
    constexpr int unbelievable = 1000;
    if (std::ranges::any_of(shadow, [](int extent) { return extent < 0 || extent > unbelievable; }))
        return {};
    return shadow;
}

}  // namespace

ScreenArea ScreenArea::intersected(const ScreenArea& other) const {
    const int left = std::max(x, other.x);
    const int top = std::max(y, other.y);
    return {left, top, std::min(x + width, other.x + other.width) - left,
            std::min(y + height, other.y + other.height) - top};
}

ScreenGeometry::ScreenGeometry(xcb_connection_t* connection, xcb_window_t root) : connection_(connection), root_(root) {
    const auto* extension = xcb_get_extension_data(connection_, &xcb_randr_id);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    if (extension && extension->present) {
        const auto version = awaitXReply<xcb_randr_query_version_reply_t>(
            connection_, xcb_randr_query_version(connection_, 1, 5).sequence, deadline);
        hasMonitors_ =
            version && (version->major_version > 1 || (version->major_version == 1 && version->minor_version >= 5));
    }
    const auto atom = awaitXReply<xcb_intern_atom_reply_t>(
        connection_, xcb_intern_atom(connection_, 0, ownShadowName.size(), ownShadowName.data()).sequence, deadline);
    ownShadow_ = atom ? atom->atom : static_cast<xcb_atom_t>(XCB_NONE);
}

std::vector<ScreenArea> ScreenGeometry::monitors(XDeadline deadline) {
    std::vector<ScreenArea> found;
    if (hasMonitors_) {
        const auto reply = awaitXReply<xcb_randr_get_monitors_reply_t>(
            connection_, xcb_randr_get_monitors(connection_, root_, 1).sequence, deadline);
        if (reply)
            for (auto each = xcb_randr_get_monitors_monitors_iterator(reply.get()); each.rem > 0;
                 xcb_randr_monitor_info_next(&each)) {
                const ScreenArea area{each.data->x, each.data->y, each.data->width, each.data->height};
                if (!area.isEmpty())
                    found.insert(each.data->primary ? found.begin() : found.end(), area);
            }
    }
    if (found.empty())
        if (const auto whole = screen(deadline); !whole.isEmpty())
            found.push_back(whole);
    return found;
}

ScreenArea ScreenGeometry::screen(XDeadline deadline) {
    const auto placed = placeOf(root_, deadline);
    return placed ? placed->area : ScreenArea();
}

std::optional<ScreenGeometry::Placed> ScreenGeometry::placeOf(xcb_window_t window, XDeadline deadline) {
    return takePlace(askPlace(window), deadline);
}

ScreenGeometry::PlaceQuestion ScreenGeometry::askPlace(xcb_window_t window) {
    return {.geometry = xcb_get_geometry(connection_, window).sequence,
            .attributes = xcb_get_window_attributes(connection_, window).sequence};
}

std::optional<ScreenGeometry::Placed> ScreenGeometry::takePlace(PlaceQuestion asked, XDeadline deadline) {
    const auto geometry = awaitXReply<xcb_get_geometry_reply_t>(connection_, asked.geometry, deadline);
    const auto attributes = awaitXReply<xcb_get_window_attributes_reply_t>(connection_, asked.attributes, deadline);
    if (!geometry || !attributes)
        return std::nullopt;
    const int border = geometry->border_width;
    return Placed{.area = {geometry->x, geometry->y, geometry->width + 2 * border, geometry->height + 2 * border},
                  .border = border,
                  .isViewable = attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
                                attributes->_class != XCB_WINDOW_CLASS_INPUT_ONLY};
}

std::optional<WindowFrame> ScreenGeometry::frameOf(xcb_window_t client, XDeadline deadline) {
    auto window = client;
    for (int depth = 0; depth < deepestNesting; ++depth) {
        const auto tree =
            awaitXReply<xcb_query_tree_reply_t>(connection_, xcb_query_tree(connection_, window).sequence, deadline);
        if (!tree || tree->parent == XCB_NONE)
            return std::nullopt;
        if (tree->parent == root_)
            break;
        window = tree->parent;
    }
    const auto placed = placeOf(window, deadline);
    if (!placed)
        return std::nullopt;
    WindowFrame frame{.topLevel = window, .area = placed->area, .isViewable = placed->isViewable};
    frame.insetX = frame.insetY = placed->border;
    // Only a client without a frame of the window manager's draws its own shadow.
    const auto shadow = decodeShadow(
        window == client && ownShadow_ != XCB_NONE
            ? awaitXReply<xcb_get_property_reply_t>(
                  connection_, xcb_get_property(connection_, 0, client, ownShadow_, XCB_ATOM_CARDINAL, 0, 4).sequence,
                  deadline)
                  .get()
            : nullptr);
    const auto [left, right, top, bottom] = shadow;
    frame.insetX += left;
    frame.insetY += top;
    frame.area = {frame.area.x + frame.insetX, frame.area.y + frame.insetY,
                  frame.area.width - 2 * placed->border - left - right,
                  frame.area.height - 2 * placed->border - top - bottom};
    return frame;
}

std::vector<xcb_window_t> ScreenGeometry::topLevels(XDeadline deadline) {
    const auto tree =
        awaitXReply<xcb_query_tree_reply_t>(connection_, xcb_query_tree(connection_, root_).sequence, deadline);
    if (!tree)
        return {};
    const auto* first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

bool ScreenGeometry::isCovered(const WindowFrame& frame, XDeadline deadline) {
    if (frame.area.intersected(screen(deadline)) != frame.area)
        return true;
    const auto windows = topLevels(deadline);  // from the lowest to the highest
    const auto own = std::ranges::find(windows, frame.topLevel);
    if (own == windows.end())
        return true;
    // All at once: a desktop has dozens of them, most of which are not shown.
    std::vector<PlaceQuestion> asked;
    std::transform(own + 1, windows.end(), std::back_inserter(asked),
                   [this](xcb_window_t above) { return askPlace(above); });
    return std::ranges::count_if(asked, [&](const PlaceQuestion& question) {
               const auto placed = takePlace(question, deadline);
               return placed && placed->isViewable && !placed->area.intersected(frame.area).isEmpty();
           }) > 0;
}

}  // namespace tavrelon::desktop
