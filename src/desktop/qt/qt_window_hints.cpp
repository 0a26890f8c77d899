#include "desktop/qt/qt_window_hints.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace tavrelon::desktop {

namespace {

template <std::size_t Count>
std::array<xcb_atom_t, Count> atoms(xcb_connection_t* connection, const std::array<std::string_view, Count>& names) {
    std::array<xcb_intern_atom_cookie_t, Count> asked{};
    for (std::size_t i = 0; i < Count; ++i)
        asked[i] = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(names[i].size()), names[i].data());
    std::array<xcb_atom_t, Count> found{};
    for (std::size_t i = 0; i < Count; ++i) {
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
            xcb_intern_atom_reply(connection, asked[i], nullptr), &std::free);
        found[i] = reply ? reply->atom : XCB_ATOM_NONE;
    }
    return found;
}

}  // namespace

void wishForEveryWorkspace(QWindow& window) {
    const auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!x11)
        return;
    constexpr std::uint32_t everyWorkspace = 0xffffffff;
    const auto identifier = static_cast<xcb_window_t>(window.winId());
    // On the toolkit's own connection, so that it is said before the window shows; what the toolkit wishes it adds.
    auto* connection = x11->connection();
    const auto [desktop, state, noTaskBar, noPager] = atoms<4>(
        connection, {"_NET_WM_DESKTOP", "_NET_WM_STATE", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"});
    const std::array states{noTaskBar, noPager};
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, identifier, desktop, XCB_ATOM_CARDINAL, 32, 1,
                        &everyWorkspace);
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, identifier, state, XCB_ATOM_ATOM, 32, states.size(),
                        states.data());
}

}  // namespace tavrelon::desktop
