#include "support/test_window.h"

#include <QSysInfo>
#include <stdexcept>
#include <thread>

namespace tavrelon::testing {

QString thisMachine() {
    return QSysInfo::machineHostName();
}

TestWindow::TestWindow(const TestWindowProperties& properties) {
    const auto utf8 = QStringLiteral("UTF8_STRING");
    const auto latin1 = QStringLiteral("STRING");
    if (const auto number = properties.processIdentifier)
        peer_.put(window(), peer_.atom(QStringLiteral("_NET_WM_PID")), QStringLiteral("CARDINAL"), 32,
                  bytesOf({static_cast<std::uint32_t>(*number)}));
    if (properties.machine)
        put(QStringLiteral("WM_CLIENT_MACHINE"), latin1, properties.machine->toLatin1());
    if (const auto name = properties.windowClass)
        put(QStringLiteral("WM_CLASS"), latin1, name->toLower().toUtf8() + '\0' + name->toUtf8() + '\0');
    if (properties.title)
        put(QStringLiteral("_NET_WM_NAME"), utf8, properties.title->toUtf8());
    const std::uint32_t size[] = {300, 200};
    xcb_configure_window(peer_.xcb(), window(), XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
    // A window manager that is still starting announces itself before it listens, and loses what it was asked for.
    for (int attempt = 0; attempt < 100 && !isViewable(); ++attempt) {
        if (attempt % 10 == 0)
            xcb_map_window(peer_.xcb(), window());
        xcb_flush(peer_.xcb());
        std::this_thread::sleep_for(std::chrono::milliseconds(attempt == 0 ? 5 : 50));
    }
    if (!isViewable())
        throw std::runtime_error("the test's window did not become visible");
}

bool TestWindow::isViewable() const {
    const std::unique_ptr<xcb_get_window_attributes_reply_t, ClipboardPeer::Deleter> attributes(
        xcb_get_window_attributes_reply(peer_.xcb(), xcb_get_window_attributes(peer_.xcb(), window()), nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

void TestWindow::put(const QString& property, const QString& type, const QByteArray& bytes) {
    peer_.put(window(), peer_.atom(property), type, 8, bytes);
}

void TestWindow::destroy() {
    xcb_destroy_window(peer_.xcb(), window());
    // The answer says that the server has done it.
    std::free(xcb_get_input_focus_reply(peer_.xcb(), xcb_get_input_focus(peer_.xcb()), nullptr));
}

void TestWindow::takeFocus() {
    xcb_set_input_focus(peer_.xcb(), XCB_INPUT_FOCUS_PARENT, window(), XCB_CURRENT_TIME);
    xcb_flush(peer_.xcb());
}

}  // namespace tavrelon::testing
