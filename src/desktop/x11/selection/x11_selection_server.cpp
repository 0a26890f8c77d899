#include "desktop/x11/selection/x11_selection_server.h"

#include <algorithm>

namespace tavrelon::desktop {

namespace {

constexpr qsizetype incrementBytes = 256 * 1024;
constexpr qsizetype mostMultipleBytes = 64 * 1024;

}  // namespace

bool SelectionServer::offer(SelectionContent content) {
    const auto& atoms = connection_.atoms();
    content_ = std::move(content);
    wasFetched_ = false;
    pressesBefore_ = presses_ ? presses_->load() : 0;
    claiming_ = true;
    // A change in the same moment by another client can make our time the older one; a second try has a newer one.
    for (int attempt = 0; attempt < 2; ++attempt) {
        ownedSince_ = connection_.serverTime();
        xcb_set_selection_owner(connection_.xcb(), connection_.window(), atoms.selection, ownedSince_);
        owns_ = connection_.ownerOf(atoms.selection) == connection_.window();
        if (owns_)
            break;
    }
    if (!owns_) {
        claiming_ = false;
        content_ = {};
    }
    return owns_;
}

void SelectionServer::release() {
    xcb_set_selection_owner(connection_.xcb(), XCB_NONE, connection_.atoms().selection, connection_.serverTime());
    owns_ = false;
    claiming_ = false;
    content_ = {};
}

void SelectionServer::ownerChanged(const xcb_xfixes_selection_notify_event_t& event) {
    if (event.selection != connection_.atoms().selection)
        return;
    // What is reported before our own change came before it and takes nothing from us.
    if (claiming_) {
        claiming_ = event.owner != connection_.window() || event.selection_timestamp != ownedSince_;
        return;
    }
    if (event.owner != connection_.window()) {
        owns_ = false;
        content_ = {};
    }
}

void SelectionServer::answer(const xcb_selection_request_event_t& request) {
    // Clients from before the inter-client conventions name no property: the target's name serves.
    const auto property = request.property == XCB_ATOM_NONE ? request.target : request.property;
    const bool ours = owns_ && request.selection == connection_.atoms().selection;
    const bool done =
        ours && (request.target == connection_.atoms().multiple ? convertEach(request.requestor, property)
                                                                : convert(request.requestor, request.target, property));
    // The server copies 32 bytes whatever the event's own size is.
    union {
        xcb_selection_notify_event_t event;
        char wire[32];
    } notify{};
    notify.event.response_type = XCB_SELECTION_NOTIFY;
    notify.event.time = request.time;
    notify.event.requestor = request.requestor;
    notify.event.selection = request.selection;
    notify.event.target = request.target;
    notify.event.property = done ? property : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    xcb_send_event(connection_.xcb(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, notify.wire);
}

bool SelectionServer::convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property) {
    const auto& atoms = connection_.atoms();
    if (target == atoms.targets) {
        std::vector<std::uint32_t> list{atoms.targets, atoms.timestamp, atoms.multiple, atoms.saveTargets};
        std::ranges::copy(connection_.atomsOf(content_.targets()), std::back_inserter(list));
        putAtoms(requestor, property, XCB_ATOM_ATOM, list);
        return true;
    }
    if (target == atoms.timestamp) {
        putAtoms(requestor, property, XCB_ATOM_INTEGER, {ownedSince_});
        return true;
    }
    if (target == atoms.saveTargets) {  // a request to do something, which the property's being there confirms
        put({requestor, property}, connection_.atom(QStringLiteral("NULL")), 32, {});
        return true;
    }
    auto data = content_.dataFor(connection_.nameOf(target));
    if (!data || !give(requestor, property, std::move(*data)))
        return false;
    wasFetched_ = wasFetched_ || connection_.hasFocus(requestor) || (presses_ && *presses_ != pressesBefore_);
    return true;
}

bool SelectionServer::convertEach(xcb_window_t requestor, xcb_atom_t property) {
    const auto& atoms = connection_.atoms();
    const auto parameter =
        connection_.readProperty(requestor, property, SelectionConnection::AfterRead::Keep, mostMultipleBytes);
    if (parameter.type == XCB_ATOM_NONE || parameter.format != 32)
        return false;
    auto pairs = decodeMultiple(parameter.atoms());
    for (auto& pair : pairs) {
        const bool sensible = pair.target != atoms.multiple && pair.property != XCB_ATOM_NONE;
        if (!sensible || !convert(requestor, pair.target, pair.property))
            pair.property = XCB_ATOM_NONE;
    }
    putAtoms(requestor, property, atoms.atomPair, encodeMultiple(pairs));
    return true;
}

bool SelectionServer::give(xcb_window_t requestor, xcb_atom_t property, SelectionData data) {
    const auto type = connection_.atom(data.type);
    if (type == XCB_ATOM_NONE)
        return false;
    if (data.bytes.size() <= connection_.directLimit())
        put({requestor, property}, type, data.format, data.bytes);
    else
        beginIncrements({requestor, property}, std::move(data));
    return true;
}

void SelectionServer::beginIncrements(const TransferKey& key, SelectionData data) {
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_.xcb(), key.first, XCB_CW_EVENT_MASK, &events);
    putAtoms(key.first, key.second, connection_.atoms().incr, {static_cast<std::uint32_t>(data.bytes.size())});
    const auto type = connection_.atom(data.type);
    transfers_.insert_or_assign(key, Transfer{.source = IncrementSource(std::move(data)),
                                              .type = type,
                                              .deadline = SelectionClock::now() + stallLimit});
}

void SelectionServer::propertyDeleted(xcb_window_t window, xcb_atom_t property) {
    const auto found = transfers_.find({window, property});
    if (found == transfers_.end())
        return;
    auto& [key, transfer] = *found;
    if (transfer.source.ended()) {
        end(found);
        return;
    }
    const auto increment = transfer.source.next(incrementBytes);
    put(key, transfer.type, transfer.source.data().format, increment);
    transfer.deadline = SelectionClock::now() + stallLimit;
}

void SelectionServer::windowGone(xcb_window_t window) {
    std::erase_if(transfers_, [&](const auto& entry) { return entry.first.first == window; });
}

SelectionServer::Transfers::iterator SelectionServer::end(Transfers::iterator transfer) {
    const auto window = transfer->first.first;
    const auto next = transfers_.erase(transfer);
    const bool more = std::ranges::any_of(transfers_, [&](const auto& entry) { return entry.first.first == window; });
    if (!more) {
        const std::uint32_t events = XCB_EVENT_MASK_NO_EVENT;
        xcb_change_window_attributes(connection_.xcb(), window, XCB_CW_EVENT_MASK, &events);
    }
    return next;
}

std::optional<SelectionClock::time_point> SelectionServer::nextDeadline() const {
    std::optional<SelectionClock::time_point> first;
    for (const auto& entry : transfers_)
        first = std::min(first.value_or(entry.second.deadline), entry.second.deadline);
    return first;
}

void SelectionServer::dropStalled(SelectionClock::time_point now) {
    for (auto transfer = transfers_.begin(); transfer != transfers_.end();)
        transfer = transfer->second.deadline <= now ? end(transfer) : std::next(transfer);
}

void SelectionServer::putAtoms(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type,
                               const std::vector<std::uint32_t>& atoms) {
    put({requestor, property}, type, 32,
        QByteArray(reinterpret_cast<const char*>(atoms.data()),
                   static_cast<qsizetype>(atoms.size() * sizeof(std::uint32_t))));
}

void SelectionServer::put(const TransferKey& key, xcb_atom_t type, int format, const QByteArray& bytes) {
    xcb_change_property(connection_.xcb(), XCB_PROP_MODE_REPLACE, key.first, key.second, type,
                        static_cast<std::uint8_t>(format), static_cast<std::uint32_t>(bytes.size() / (format / 8)),
                        bytes.constData());
}

}  // namespace tavrelon::desktop
