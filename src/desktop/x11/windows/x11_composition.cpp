#include "desktop/x11/windows/x11_composition.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "desktop/x11/connection/x11_reply_wait.h"
#include "desktop/x11/windows/x11_window_queries.h"

namespace tavrelon::desktop {

namespace {

constexpr std::chrono::milliseconds limit{50};
constexpr std::uint32_t longestClass = 64;  // in units of four bytes

/// The instance names of the windows in which input methods show candidates.
constexpr std::array candidateWindows{QLatin1String("fcitx"), QLatin1String("fcitx5"), QLatin1String("ibus-ui-gtk3")};

bool isCandidateWindow(const xcb_get_property_reply_t& windowClass) {
    const auto* text = static_cast<const char*>(xcb_get_property_value(&windowClass));
    const auto instance = decodeWindowClass(QByteArray(text, xcb_get_property_value_length(&windowClass))).first;
    return std::ranges::any_of(candidateWindows, [&](QLatin1String name) { return instance == name; });
}

struct Asked {
    unsigned int attributes;
    unsigned int windowClass;
};

}  // namespace

bool showsComposition(xcb_connection_t* connection, xcb_window_t root) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    const auto tree =
        awaitXReply<xcb_query_tree_reply_t>(connection, xcb_query_tree(connection, root).sequence, deadline);
    if (!tree)
        return false;
    std::vector<Asked> asked;
    for (const auto window : std::span(xcb_query_tree_children(tree.get()),
                                       static_cast<std::size_t>(xcb_query_tree_children_length(tree.get()))))
        asked.push_back(
            {xcb_get_window_attributes(connection, window).sequence,
             xcb_get_property(connection, 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, longestClass).sequence});
    bool found = false;
    for (const auto& [attributesAsked, classAsked] : asked) {
        const auto attributes = awaitXReply<xcb_get_window_attributes_reply_t>(connection, attributesAsked, deadline);
        const auto windowClass = awaitXReply<xcb_get_property_reply_t>(connection, classAsked, deadline);
        found |= attributes && windowClass && attributes->override_redirect != 0 &&
                 attributes->map_state == XCB_MAP_STATE_VIEWABLE && isCandidateWindow(*windowClass);
    }
    return found;
}

}  // namespace tavrelon::desktop
