#include "desktop/x11/connection/x11_connection.h"

#include <sys/socket.h>
#include <xcb/xinput.h>
#include <xkbcommon/xkbcommon-x11.h>

namespace tavrelon::desktop {

std::expected<std::unique_ptr<X11Connection>, QString> X11Connection::open(InputVersion version) {
    int screen = 0;
    std::unique_ptr<X11Connection> connection(new X11Connection(xcb_connect(nullptr, &screen)));
    if (const auto done = connection->setUp(screen, version); !done)
        return std::unexpected(done.error());
    return connection;
}

std::expected<void, QString> X11Connection::setUp(int screen, InputVersion version) {
    if (isBroken()) {
        const auto display = qEnvironmentVariable("DISPLAY");
        return std::unexpected(display.isEmpty()
                                   ? QStringLiteral("DISPLAY names no X server.")
                                   : QStringLiteral("The X server of display %1 cannot be reached.").arg(display));
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
    for (; screen > 0 && screens.rem > 1; --screen)
        xcb_screen_next(&screens);
    root_ = screens.data->root;

    const auto* input = xcb_get_extension_data(connection_, &xcb_input_id);
    if (!input || !input->present)
        return std::unexpected(QStringLiteral("The X server lacks the XInput extension."));
    inputOpcode_ = input->major_opcode;
    const auto minor = static_cast<std::uint16_t>(version);
    const XPointer<xcb_input_xi_query_version_reply_t> known(
        xcb_input_xi_query_version_reply(connection_, xcb_input_xi_query_version(connection_, 2, minor), nullptr));
    if (!known || known->major_version < 2 || (known->major_version == 2 && known->minor_version < minor))
        return std::unexpected(QStringLiteral("The X server lacks XInput 2.2."));
    if (!xkb_x11_setup_xkb_extension(connection_, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                     XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &firstXkbEvent_, nullptr))
        return std::unexpected(QStringLiteral("The X server lacks the XKB extension."));
    return {};
}

void X11Connection::breakOff() {
    ::shutdown(xcb_get_file_descriptor(connection_), SHUT_RDWR);
}

void X11Connection::sync() {
    const XPointer<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

}  // namespace tavrelon::desktop
