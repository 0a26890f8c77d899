#include "desktop/x11/windows/x11_window_queries.h"

#include <xcb/res.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace tavrelon::desktop {

namespace {

constexpr std::uint32_t mostPropertyUnits = 64 * 1024;
constexpr int deepestNesting = 32;
constexpr std::uint32_t requestByUser = 2;  // what pagers and task bars say

}  // namespace

std::pair<QString, QString> decodeWindowClass(const QByteArray& bytes) {
    const auto parts = bytes.split('\0');
    return {QString::fromUtf8(parts.value(0)), QString::fromUtf8(parts.value(1))};
}

std::vector<std::uint32_t> X11WindowQueries::Property::numbers() const {
    std::vector<std::uint32_t> values(static_cast<std::size_t>(bytes.size()) / sizeof(std::uint32_t));
    if (!values.empty())  // an empty array's address may be null
        std::memcpy(values.data(), bytes.constData(), values.size() * sizeof(std::uint32_t));
    return values;
}

std::expected<std::unique_ptr<X11WindowQueries>, QString> X11WindowQueries::open(const QByteArray& displayName) {
    int screenNumber = 0;
    std::unique_ptr<X11WindowQueries> opened(
        new X11WindowQueries(xcb_connect(displayName.isEmpty() ? nullptr : displayName.constData(), &screenNumber)));
    if (xcb_connection_has_error(opened->connection_) != 0 || !opened->prepare(screenNumber))
        return std::unexpected(QStringLiteral("The windows of the desktop are unknown: no connection to the X server"));
    return opened;
}

X11WindowQueries::~X11WindowQueries() {
    xcb_disconnect(connection_);
}

bool X11WindowQueries::prepare(int screenNumber) {
    screenNumber_ = screenNumber;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
    for (; screens.rem > 1 && screenNumber > 0; --screenNumber)
        xcb_screen_next(&screens);
    root_ = screens.data->root;
    constexpr std::array<std::string_view, 10> names{
        "_NET_ACTIVE_WINDOW", "_NET_SUPPORTED", "_NET_SUPPORTING_WM_CHECK",
        "_NET_WM_PID",        "_NET_WM_NAME",   "_GTK_APPLICATION_ID",
        "UTF8_STRING",        "WM_STATE",       "_NET_CLIENT_LIST_STACKING",
        "_GTK_FRAME_EXTENTS"};
    std::array<xcb_atom_t*, 10> places{&atoms_.activeWindow,      &atoms_.supported,   &atoms_.supportingWindow,
                                       &atoms_.processIdentifier, &atoms_.name,        &atoms_.applicationId,
                                       &atoms_.utf8String,        &atoms_.windowState, &atoms_.clientsByStacking,
                                       &atoms_.ownShadow};
    std::array<unsigned int, 10> asked{};
    for (std::size_t i = 0; i < names.size(); ++i)
        asked[i] =
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(names[i].size()), names[i].data()).sequence;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto reply = await<xcb_intern_atom_reply_t>(asked[i], deadline);
        if (!reply)
            return false;
        *places[i] = reply->atom;
    }
    return true;
}

template <typename T>
XPointer<T> X11WindowQueries::await(unsigned int sequence, Deadline deadline) {
    return awaitXReply<T>(connection_, sequence, deadline);
}

unsigned int X11WindowQueries::ask(xcb_window_t window, xcb_atom_t property) {
    return xcb_get_property(connection_, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, mostPropertyUnits).sequence;
}

X11WindowQueries::Property X11WindowQueries::take(unsigned int sequence, Deadline deadline) {
    const auto reply = await<xcb_get_property_reply_t>(sequence, deadline);
    if (!reply)
        return {};
    return {.type = reply->type,
            .bytes = QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                xcb_get_property_value_length(reply.get()))};
}

std::optional<unsigned int> X11WindowQueries::askOwner(xcb_window_t window) {
    const auto* extension = xcb_get_extension_data(connection_, &xcb_res_id);
    if (!extension || !extension->present)
        return std::nullopt;
    const xcb_res_client_id_spec_t wanted{.client = window, .mask = XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    return xcb_res_query_client_ids(connection_, 1, &wanted).sequence;
}

std::optional<qint64> X11WindowQueries::takeOwner(unsigned int sequence, Deadline deadline) {
    const auto reply = await<xcb_res_query_client_ids_reply_t>(sequence, deadline);
    if (!reply)
        return std::nullopt;
    const auto found = xcb_res_query_client_ids_ids_iterator(reply.get());
    if (found.rem == 0 || xcb_res_client_id_value_value_length(found.data) == 0)
        return std::nullopt;
    return *xcb_res_client_id_value_value(found.data);
}

xcb_window_t X11WindowQueries::activeWindow() {
    discardEvents();
    const auto deadline = std::chrono::steady_clock::now() + limit;
    const auto askedActive = ask(root_, atoms_.activeWindow);
    const auto askedSupporting = ask(root_, atoms_.supportingWindow);
    const auto active = take(askedActive, deadline);
    const auto supporting = take(askedSupporting, deadline);
    if (active.type == XCB_ATOM_WINDOW && windowManagerRuns(supporting, deadline))
        return active.numbers().empty() ? static_cast<xcb_window_t>(XCB_NONE) : active.numbers().front();
    const auto client = focusedClient(deadline);
    // Where no window has the focus, window managers keep it on their own.
    const auto managers = supporting.numbers();
    return std::ranges::find(managers, client) == managers.end() ? client : static_cast<xcb_window_t>(XCB_NONE);
}

bool X11WindowQueries::windowManagerRuns(const Property& supportingWindow, Deadline deadline) {
    // A window manager that died leaves its last word on the root window; its own window went with it.
    const auto numbers = supportingWindow.numbers();
    if (supportingWindow.type != XCB_ATOM_WINDOW || numbers.empty())
        return false;
    return take(ask(numbers.front(), atoms_.supportingWindow), deadline).type == XCB_ATOM_WINDOW;
}

xcb_window_t X11WindowQueries::focusedClient(Deadline deadline) {
    const auto focus = await<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection_).sequence, deadline);
    if (!focus || focus->focus == XCB_NONE || focus->focus == XCB_INPUT_FOCUS_POINTER_ROOT || focus->focus == root_)
        return XCB_NONE;
    auto window = focus->focus;
    xcb_window_t withClass = XCB_NONE;
    for (int depth = 0; depth < deepestNesting; ++depth) {
        const auto askedState = ask(window, atoms_.windowState);
        const auto askedClass = ask(window, XCB_ATOM_WM_CLASS);
        const auto askedTree = xcb_query_tree(connection_, window).sequence;
        const bool managed = take(askedState, deadline).type != XCB_ATOM_NONE;
        if (take(askedClass, deadline).type != XCB_ATOM_NONE)
            withClass = window;
        const auto tree = await<xcb_query_tree_reply_t>(askedTree, deadline);
        if (managed)
            return window;
        if (!tree)  // destroyed meanwhile
            return XCB_NONE;
        if (tree->parent == root_ || tree->parent == XCB_NONE)
            return withClass != XCB_NONE ? withClass : window;
        window = tree->parent;
    }
    return withClass;
}

std::vector<xcb_window_t> X11WindowQueries::clientsFromFront() {
    const auto clients = take(ask(root_, atoms_.clientsByStacking), std::chrono::steady_clock::now() + limit);
    if (clients.type != XCB_ATOM_WINDOW)
        return {};
    const auto fromBack = clients.numbers();
    return {fromBack.rbegin(), fromBack.rend()};
}

X11WindowProperties X11WindowQueries::properties(xcb_window_t window) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    const auto askedWindow = xcb_get_window_attributes(connection_, window).sequence;
    const auto askedOwner = askOwner(window);
    const auto askedProcess = ask(window, atoms_.processIdentifier);
    const auto askedMachine = ask(window, XCB_ATOM_WM_CLIENT_MACHINE);
    const auto askedClass = ask(window, XCB_ATOM_WM_CLASS);
    const auto askedId = ask(window, atoms_.applicationId);
    const auto askedName = ask(window, atoms_.name);
    const auto askedOldName = ask(window, XCB_ATOM_WM_NAME);

    X11WindowProperties found;
    found.exists = await<xcb_get_window_attributes_reply_t>(askedWindow, deadline) != nullptr;
    const auto process = take(askedProcess, deadline);
    if (process.type == XCB_ATOM_CARDINAL && !process.numbers().empty())
        found.processIdentifier = process.numbers().front();
    // What the server itself saw counts: a program in a sandbox tells a number that is another process's out here.
    // It tells a process for windows that are gone, too: whoever got their numbers since.
    if (const auto owner = askedOwner ? takeOwner(*askedOwner, deadline) : std::nullopt; owner && found.exists)
        found.processIdentifier = *owner;
    found.machine = QString::fromUtf8(take(askedMachine, deadline).bytes).section(QChar(0), 0, 0);
    std::tie(found.windowInstance, found.windowClass) = decodeWindowClass(take(askedClass, deadline).bytes);
    found.applicationId = QString::fromUtf8(take(askedId, deadline).bytes).section(QChar(0), 0, 0);
    const auto name = take(askedName, deadline);
    found.title = decodeTitle(name, take(askedOldName, deadline));
    return found;
}

std::optional<QString> X11WindowQueries::title(xcb_window_t window) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    const auto askedName = ask(window, atoms_.name);
    const auto askedOldName = ask(window, XCB_ATOM_WM_NAME);
    const auto name = take(askedName, deadline);
    return decodeTitle(name, take(askedOldName, deadline));
}

std::optional<platform::WindowPlace> X11WindowQueries::place(xcb_window_t window) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    const auto askedGeometry = xcb_get_geometry(connection_, window).sequence;
    const auto askedOrigin = xcb_translate_coordinates(connection_, window, root_, 0, 0).sequence;
    const auto askedShadow = ask(window, atoms_.ownShadow);
    const auto geometry = await<xcb_get_geometry_reply_t>(askedGeometry, deadline);
    const auto origin = await<xcb_translate_coordinates_reply_t>(askedOrigin, deadline);
    const auto shadow = take(askedShadow, deadline).numbers();
    if (!geometry || !origin)
        return std::nullopt;
    platform::WindowPlace place{
        .x = origin->dst_x, .y = origin->dst_y, .width = geometry->width, .height = geometry->height, .shadow = {}};
    constexpr std::uint32_t unbelievable = 1000;
    if (shadow.size() == 4 && std::ranges::all_of(shadow, [](std::uint32_t width) { return width < unbelievable; }))
        place.shadow = {static_cast<int>(shadow[0]), static_cast<int>(shadow[1]), static_cast<int>(shadow[2]),
                        static_cast<int>(shadow[3])};
    return place;
}

std::optional<QString> X11WindowQueries::decodeTitle(const Property& modern, const Property& old) const {
    if (modern.type != XCB_ATOM_NONE)
        return QString::fromUtf8(modern.bytes);
    if (old.type == XCB_ATOM_NONE)
        return std::nullopt;
    return old.type == atoms_.utf8String || old.bytes.isValidUtf8() ? QString::fromUtf8(old.bytes)
                                                                    : QString::fromLatin1(old.bytes);
}

bool X11WindowQueries::ownsPrimarySelection(xcb_window_t window) {
    const auto asked = xcb_get_selection_owner(connection_, XCB_ATOM_PRIMARY).sequence;
    const auto owner = await<xcb_get_selection_owner_reply_t>(asked, std::chrono::steady_clock::now() + limit);
    if (!owner || owner->owner == XCB_NONE)
        return false;
    // All windows of one client have the same number but for these bits.
    const auto inClient = xcb_get_setup(connection_)->resource_id_mask;
    return (owner->owner | inClient) == (window | inClient);
}

bool X11WindowQueries::isGone(xcb_window_t window) {
    xcb_flush(connection_);
    const auto deadline = std::chrono::steady_clock::now() + limit;
    const auto asked = xcb_get_window_attributes(connection_, window).sequence;
    const auto probe = xcb_get_input_focus(connection_).sequence;
    const bool exists = await<xcb_get_window_attributes_reply_t>(asked, deadline) != nullptr;
    const bool answered = await<xcb_get_input_focus_reply_t>(probe, deadline) != nullptr;
    return answered && !exists;
}

bool X11WindowQueries::hasInputFocus(xcb_window_t window) {
    return activeWindow() == window && focusedClient(std::chrono::steady_clock::now() + limit) == window;
}

void X11WindowQueries::setInputFocus(xcb_window_t window) {
    discardEvents();
    xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    xcb_flush(connection_);
}

bool X11WindowQueries::isComposited() {
    discardEvents();
    const auto deadline = std::chrono::steady_clock::now() + limit;
    const auto name = QByteArray("_NET_WM_CM_S") + QByteArray::number(screenNumber_);
    const auto named =
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.constData()).sequence;
    const auto atom = await<xcb_intern_atom_reply_t>(named, deadline);
    if (!atom)
        return false;
    const auto owned = xcb_get_selection_owner(connection_, atom->atom).sequence;
    const auto owner = await<xcb_get_selection_owner_reply_t>(owned, deadline);
    return owner && owner->owner != XCB_NONE;
}

bool X11WindowQueries::requestActivation(xcb_window_t window) {
    discardEvents();
    const auto deadline = std::chrono::steady_clock::now() + limit;
    const auto askedSupporting = ask(root_, atoms_.supportingWindow);
    const auto askedSupported = ask(root_, atoms_.supported);
    const auto supporting = take(askedSupporting, deadline);
    const auto supported = take(askedSupported, deadline).numbers();
    if (std::ranges::find(supported, atoms_.activeWindow) == supported.end() ||
        !windowManagerRuns(supporting, deadline) || isGone(window))
        return false;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atoms_.activeWindow;
    message.data.data32[0] = requestByUser;
    message.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(connection_, 0, root_, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    return xcb_flush(connection_) > 0;
}

void X11WindowQueries::discardEvents() {
    // Errors of requests without an answer, and the news of a changed keyboard that every client gets unasked.
    while (auto* event = xcb_poll_for_event(connection_))
        std::free(event);
}

}  // namespace tavrelon::desktop
