#include "desktop/x11/selection/x11_selection_connection.h"

#include <xcb/xfixes.h>

#include <algorithm>
#include <cstring>

namespace tavrelon::desktop {

namespace {

/// Far under the server's own limit, so that one transfer does not keep other clients waiting.
constexpr qsizetype mostDirectBytes = 1 << 20;
constexpr qsizetype requestSlack = 1024;

std::uint8_t responseType(const xcb_generic_event_t& event) {
    return event.response_type & 0x7f;
}

}  // namespace

std::vector<std::uint32_t> PropertyValue::atoms() const {
    std::vector<std::uint32_t> values;
    if (format != 32)
        return values;
    values.resize(static_cast<std::size_t>(bytes.size()) / sizeof(std::uint32_t));
    if (!values.empty())  // an empty array's address may be null
        std::memcpy(values.data(), bytes.constData(), values.size() * sizeof(std::uint32_t));
    return values;
}

std::expected<std::unique_ptr<SelectionConnection>, QString> SelectionConnection::open(const QByteArray& displayName,
                                                                                       SelectionName selection) {
    int screenNumber = 0;
    // xcb answers with an object even when it could not connect, and that one too has to be closed.
    std::unique_ptr<SelectionConnection> opened(new SelectionConnection(
        xcb_connect(displayName.isEmpty() ? nullptr : displayName.constData(), &screenNumber), selection));
    if (opened->isBroken())
        return std::unexpected(QStringLiteral("The clipboard is not available: no connection to the X server"));
    if (auto prepared = opened->prepare(screenNumber); !prepared)
        return std::unexpected(prepared.error());
    return opened;
}

SelectionConnection::~SelectionConnection() {
    xcb_disconnect(connection_);
}

std::expected<void, QString> SelectionConnection::prepare(int screenNumber) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
    for (; screens.rem > 1 && screenNumber > 0; --screenNumber)
        xcb_screen_next(&screens);
    root_ = screens.data->root;
    const auto* fixes = xcb_get_extension_data(connection_, &xcb_xfixes_id);
    const XPointer<xcb_xfixes_query_version_reply_t> version(
        fixes && fixes->present
            ? xcb_xfixes_query_version_reply(connection_, xcb_xfixes_query_version(connection_, 1, 0), nullptr)
            : nullptr);
    if (!version)
        return std::unexpected(QStringLiteral("The clipboard is not available: the X server has no XFixes extension"));
    ownerEvent_ = static_cast<std::uint8_t>(fixes->first_event + XCB_XFIXES_SELECTION_NOTIFY);
    internProtocolAtoms();
    window_ = createWindow();
    xcb_xfixes_select_selection_input(connection_, window_, atoms_.selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    directLimit_ = std::min(mostDirectBytes, qsizetype{4} * xcb_get_maximum_request_length(connection_) - requestSlack);
    synchronize();
    if (isBroken())
        return std::unexpected(QStringLiteral("The clipboard is not available: the X server closed the connection"));
    return {};
}

void SelectionConnection::internProtocolAtoms() {
    const auto found =
        atomsOf({selection_ == SelectionName::Clipboard ? QStringLiteral("CLIPBOARD") : QStringLiteral("PRIMARY"),
                 QStringLiteral("CLIPBOARD_MANAGER"), QStringLiteral("TARGETS"), QStringLiteral("TIMESTAMP"),
                 QStringLiteral("MULTIPLE"), QStringLiteral("ATOM_PAIR"), QStringLiteral("SAVE_TARGETS"),
                 QStringLiteral("INCR"), QStringLiteral("TAVRELON_TIME"), QStringLiteral("TAVRELON_SELECTION")});
    atoms_ = {.selection = found[0],
              .clipboardManager = found[1],
              .targets = found[2],
              .timestamp = found[3],
              .multiple = found[4],
              .atomPair = found[5],
              .saveTargets = found[6],
              .incr = found[7],
              .stamp = found[8],
              .transfer = found[9]};
}

void SelectionConnection::remember(const QString& name, xcb_atom_t atom) {
    atomByName_[name] = atom;
    nameByAtom_[atom] = name;
}

xcb_atom_t SelectionConnection::atom(const QString& name) {
    return atomsOf({name}).front();
}

std::vector<xcb_atom_t> SelectionConnection::atomsOf(const std::vector<QString>& names) {
    std::vector<std::pair<QString, xcb_intern_atom_cookie_t>> asked;
    for (const auto& name : names) {
        if (atomByName_.contains(name))
            continue;
        const auto bytes = name.toLatin1();
        asked.emplace_back(
            name, xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(bytes.size()), bytes.constData()));
    }
    for (const auto& [name, cookie] : asked) {
        if (const XPointer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr)); reply)
            remember(name, reply->atom);
    }
    std::vector<xcb_atom_t> found;
    for (const auto& name : names)
        found.push_back(atomByName_.value(name, XCB_ATOM_NONE));
    return found;
}

std::vector<QString> SelectionConnection::namesOf(std::span<const xcb_atom_t> atoms) {
    std::vector<std::pair<xcb_atom_t, xcb_get_atom_name_cookie_t>> asked;
    for (const auto atom : atoms) {
        if (atom != XCB_ATOM_NONE && !nameByAtom_.contains(atom))
            asked.emplace_back(atom, xcb_get_atom_name(connection_, atom));
    }
    for (const auto& [atom, cookie] : asked) {
        // A foreign atom can be a wrong one; it then has no name.
        const XPointer<xcb_get_atom_name_reply_t> reply(xcb_get_atom_name_reply(connection_, cookie, nullptr));
        if (reply)
            remember(
                QString::fromLatin1(xcb_get_atom_name_name(reply.get()), xcb_get_atom_name_name_length(reply.get())),
                atom);
    }
    std::vector<QString> names;
    for (const auto atom : atoms)
        names.push_back(nameByAtom_.value(atom));
    return names;
}

xcb_window_t SelectionConnection::createWindow() {
    const auto window = xcb_generate_id(connection_);
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, -10, -10, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    return window;
}

PropertyValue SelectionConnection::readProperty(xcb_window_t window, xcb_atom_t property, AfterRead after,
                                                qsizetype maximumBytes) {
    const auto units = static_cast<std::uint32_t>(maximumBytes / 4 + 1);
    const XPointer<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection_,
                               xcb_get_property(connection_, after == AfterRead::Delete, window, property,
                                                XCB_GET_PROPERTY_TYPE_ANY, 0, units),
                               nullptr));
    if (!reply)
        return {};
    return {.type = reply->type,
            .format = reply->format == 0 ? 8 : reply->format,
            .bytes = QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                xcb_get_property_value_length(reply.get())),
            .truncated = reply->bytes_after > 0};
}

xcb_window_t SelectionConnection::ownerOf(xcb_atom_t selection) {
    const XPointer<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection_, xcb_get_selection_owner(connection_, selection), nullptr));
    return reply ? reply->owner : static_cast<xcb_window_t>(XCB_NONE);
}

bool SelectionConnection::hasFocus(xcb_window_t window) {
    const XPointer<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    // All that a client makes carries its number beside the bits that it may set itself.
    const auto client = ~xcb_get_setup(connection_)->resource_id_mask;
    return focus && (focus->focus & client) == (window & client);
}

xcb_timestamp_t SelectionConnection::serverTime() {
    xcb_change_property(connection_, XCB_PROP_MODE_APPEND, window_, atoms_.stamp, XCB_ATOM_INTEGER, 32, 0, nullptr);
    const auto known = queue_.size();
    synchronize();
    for (auto i = queue_.size(); i > known; --i) {
        const auto& event = *queue_[i - 1];
        if (responseType(event) != XCB_PROPERTY_NOTIFY)
            continue;
        const auto& changed = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (changed.window == window_ && changed.atom == atoms_.stamp)
            return changed.time;
    }
    return XCB_CURRENT_TIME;
}

void SelectionConnection::synchronize() {
    // The server answers in order, so the reply comes behind every event that happened before.
    const XPointer<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    queueArrived();
}

void SelectionConnection::queueArrived() {
    while (auto* event = xcb_poll_for_queued_event(connection_))
        queue_.emplace_back(event);
}

XPointer<xcb_generic_event_t> SelectionConnection::nextEvent() {
    if (queue_.empty())
        return XPointer<xcb_generic_event_t>(xcb_poll_for_event(connection_));
    auto event = std::move(queue_.front());
    queue_.pop_front();
    return event;
}

bool SelectionConnection::hasQueuedEvent() {
    queueArrived();
    return !queue_.empty();
}

}  // namespace tavrelon::desktop
