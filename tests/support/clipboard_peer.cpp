#include "support/clipboard_peer.h"

#include <poll.h>

#include <cstring>
#include <stdexcept>
#include <thread>
#include <utility>

namespace tavrelon::testing {

ClipboardPeer::ClipboardPeer() : connection_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(connection_) != 0)
        throw std::runtime_error("no X server for the test's own client");
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    window_ = xcb_generate_id(connection_);
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    xcb_flush(connection_);
}

xcb_atom_t ClipboardPeer::atom(const QString& name) {
    if (const auto known = atoms_.find(name); known != atoms_.end())
        return known->second;
    const auto bytes = name.toLatin1();
    const std::unique_ptr<xcb_intern_atom_reply_t, Deleter> reply(xcb_intern_atom_reply(
        connection_, xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(bytes.size()), bytes.constData()),
        nullptr));
    return atoms_[name] = reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

QString ClipboardPeer::nameOf(xcb_atom_t atom) {
    const std::unique_ptr<xcb_get_atom_name_reply_t, Deleter> reply(
        xcb_get_atom_name_reply(connection_, xcb_get_atom_name(connection_, atom), nullptr));
    return reply ? QString::fromLatin1(xcb_get_atom_name_name(reply.get()), xcb_get_atom_name_name_length(reply.get()))
                 : QString();
}

ClipboardPeer::Event ClipboardPeer::nextEvent(std::chrono::milliseconds limit) {
    if (!connection_) {
        std::this_thread::sleep_for(limit);
        return nullptr;
    }
    xcb_flush(connection_);
    const auto end = Clock::now() + limit;
    for (;;) {
        if (Event event(xcb_poll_for_event(connection_)); event)
            return event;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0 || xcb_connection_has_error(connection_) != 0)
            return nullptr;
        pollfd source{.fd = xcb_get_file_descriptor(connection_), .events = POLLIN, .revents = 0};
        ::poll(&source, 1, static_cast<int>(left.count()));
    }
}

ClipboardPeer::Property ClipboardPeer::takeProperty(xcb_atom_t property) {
    const std::unique_ptr<xcb_get_property_reply_t, Deleter> reply(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 1, window_, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 64 * 1024 * 1024), nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE)
        return {};
    return {.type = nameOf(reply->type),
            .bytes = QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                xcb_get_property_value_length(reply.get()))};
}

void ClipboardPeer::put(xcb_window_t window, xcb_atom_t property, const QString& type, int format,
                        const QByteArray& bytes) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, property, atom(type),
                        static_cast<std::uint8_t>(format), static_cast<std::uint32_t>(bytes.size() / (format / 8)),
                        bytes.constData());
    xcb_flush(connection_);
}

void ClipboardPeer::notify(const xcb_selection_request_event_t& request, xcb_atom_t property) {
    union {
        xcb_selection_notify_event_t event;
        char wire[32];
    } notice{};
    notice.event.response_type = XCB_SELECTION_NOTIFY;
    notice.event.time = request.time;
    notice.event.requestor = request.requestor;
    notice.event.selection = request.selection;
    notice.event.target = request.target;
    notice.event.property = property;
    xcb_send_event(connection_, 0, request.requestor, 0, notice.wire);
    xcb_flush(connection_);
}

void ClipboardPeer::holdServer() {
    xcb_grab_server(connection_);
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

void ClipboardPeer::disconnect() {
    if (auto* connection = std::exchange(connection_, nullptr))
        xcb_disconnect(connection);
}

QByteArray bytesOf(const std::vector<std::uint32_t>& numbers) {
    return {reinterpret_cast<const char*>(numbers.data()),
            static_cast<qsizetype>(numbers.size() * sizeof(std::uint32_t))};
}

std::vector<std::uint32_t> numbersOf(const QByteArray& bytes) {
    std::vector<std::uint32_t> numbers(static_cast<std::size_t>(bytes.size()) / sizeof(std::uint32_t));
    if (!numbers.empty())
        std::memcpy(numbers.data(), bytes.constData(), numbers.size() * sizeof(std::uint32_t));
    return numbers;
}

}  // namespace tavrelon::testing
