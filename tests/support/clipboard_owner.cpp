#include "support/clipboard_owner.h"

#include <algorithm>
#include <stdexcept>

namespace tavrelon::testing {

ClipboardOwner::ClipboardOwner(std::vector<ClipboardData> data, ClipboardManners manners)
    : data_(std::move(data)), manners_(std::move(manners)) {
    const auto clipboard = peer_.atom(QStringLiteral("CLIPBOARD"));
    xcb_set_selection_owner(peer_.xcb(), peer_.window(), clipboard, XCB_CURRENT_TIME);
    const std::unique_ptr<xcb_get_selection_owner_reply_t, ClipboardPeer::Deleter> owner(
        xcb_get_selection_owner_reply(peer_.xcb(), xcb_get_selection_owner(peer_.xcb(), clipboard), nullptr));
    if (!owner || owner->owner != peer_.window())
        throw std::runtime_error("the test's own client did not get the clipboard");
    thread_ = std::thread([this] { run(); });
}

ClipboardOwner::~ClipboardOwner() {
    stop_ = true;
    thread_.join();
}

void ClipboardOwner::run() {
    while (!stop_) {
        const auto event = peer_.nextEvent(std::chrono::milliseconds(20));
        if (!event)
            continue;
        const auto type = event->response_type & 0x7f;
        if (type == XCB_SELECTION_REQUEST) {
            ++requests_;
            answer(reinterpret_cast<const xcb_selection_request_event_t&>(*event));
        } else if (type == XCB_PROPERTY_NOTIFY) {
            sendIncrement(reinterpret_cast<const xcb_property_notify_event_t&>(*event));
        }
    }
}

void ClipboardOwner::answer(const xcb_selection_request_event_t& request) {
    if (manners_.answers == ClipboardManners::Answers::Never || manners_.silent.contains(peer_.nameOf(request.target)))
        return;
    std::this_thread::sleep_for(manners_.delay);
    peer_.notify(request, convert(request) ? request.property : static_cast<xcb_atom_t>(XCB_ATOM_NONE));
}

bool ClipboardOwner::convert(const xcb_selection_request_event_t& request) {
    const auto target = peer_.nameOf(request.target);
    if (target == QStringLiteral("TARGETS") && manners_.listsTargets) {
        std::vector<std::uint32_t> atoms{peer_.atom(target), peer_.atom(QStringLiteral("TIMESTAMP"))};
        for (const auto& entry : data_)
            atoms.push_back(peer_.atom(entry.target));
        peer_.put(request.requestor, request.property, QStringLiteral("ATOM"), 32, bytesOf(atoms));
        return true;
    }
    const auto found = std::ranges::find(data_, target, &ClipboardData::target);
    if (found == data_.end() || manners_.refused.contains(target))
        return false;
    if (manners_.incrementBytes == 0) {
        peer_.put(request.requestor, request.property, found->type.isEmpty() ? target : found->type, found->format,
                  found->bytes);
        return true;
    }
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(peer_.xcb(), request.requestor, XCB_CW_EVENT_MASK, &events);
    peer_.put(request.requestor, request.property, QStringLiteral("INCR"), 32, bytesOf({manners_.announcedBytes}));
    sending_ = &*found;
    sendingTo_ = request.requestor;
    sendingProperty_ = request.property;
    sent_ = 0;
    incrementsSent_ = 0;
    return true;
}

void ClipboardOwner::sendIncrement(const xcb_property_notify_event_t& event) {
    if (!sending_ || event.state != XCB_PROPERTY_DELETE || event.window != sendingTo_ || event.atom != sendingProperty_)
        return;
    if (manners_.afterIncrements != ClipboardManners::Break::No && incrementsSent_ == manners_.goodIncrements) {
        sending_ = nullptr;
        if (manners_.afterIncrements == ClipboardManners::Break::Dies)
            peer_.disconnect();
        return;
    }
    const auto length = std::min(manners_.incrementBytes, sending_->bytes.size() - sent_);
    peer_.put(sendingTo_, sendingProperty_, sending_->type.isEmpty() ? sending_->target : sending_->type,
              sending_->format, sending_->bytes.sliced(sent_, length));
    sent_ += length;
    ++incrementsSent_;
    if (length == 0)
        sending_ = nullptr;
}

}  // namespace tavrelon::testing
