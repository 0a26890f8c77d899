#pragma once

#include <xcb/xfixes.h>

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <optional>

#include "desktop/x11/selection/x11_selection_codec.h"
#include "desktop/x11/selection/x11_selection_connection.h"

namespace tavrelon::desktop {

using SelectionClock = std::chrono::steady_clock;

/// Owns the clipboard and answers those who ask for it, any number at once. Data that does not fit into one property
/// goes in increments, at each requestor's own speed; one that vanishes or stalls is forgotten and holds up nobody.
/// Selection thread.
class SelectionServer {
 public:
    /// How long a requestor may take to fetch one increment.
    static constexpr std::chrono::seconds stallLimit{5};

    explicit SelectionServer(SelectionConnection& connection) : connection_(connection) {}

    /// Takes the clipboard. False when the server did not give it to us; nothing is offered then.
    bool offer(SelectionContent content);

    /// Leaves the clipboard without an owner, whoever had it.
    void release();

    bool owns() const { return owns_; }

    /// Where a compositor fetches on behalf of windows that this server does not know, what is fetched after one more
    /// of these presses counts as fetched by the window in front.
    void countPresses(std::shared_ptr<const std::atomic<std::uint64_t>> presses) { presses_ = std::move(presses); }

    /// Whether the client that had the keyboard focus at that moment fetched what is offered.
    bool wasFetched() const { return owns_ && wasFetched_; }
    const SelectionContent& content() const { return content_; }

    void ownerChanged(const xcb_xfixes_selection_notify_event_t& event);
    void answer(const xcb_selection_request_event_t& request);
    void propertyDeleted(xcb_window_t window, xcb_atom_t property);

    /// The window no longer exists: its transfers end.
    void windowGone(xcb_window_t window);

    std::optional<SelectionClock::time_point> nextDeadline() const;
    void dropStalled(SelectionClock::time_point now);

 private:
    struct Transfer {
        IncrementSource source;
        xcb_atom_t type;
        SelectionClock::time_point deadline;
    };
    using TransferKey = std::pair<xcb_window_t, xcb_atom_t>;
    using Transfers = std::map<TransferKey, Transfer>;

    bool convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    bool convertEach(xcb_window_t requestor, xcb_atom_t property);
    bool give(xcb_window_t requestor, xcb_atom_t property, SelectionData data);
    void beginIncrements(const TransferKey& key, SelectionData data);
    Transfers::iterator end(Transfers::iterator transfer);
    void putAtoms(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type,
                  const std::vector<std::uint32_t>& atoms);
    void put(const TransferKey& key, xcb_atom_t type, int format, const QByteArray& bytes);

    SelectionConnection& connection_;
    SelectionContent content_;
    bool owns_ = false;
    bool wasFetched_ = false;
    std::shared_ptr<const std::atomic<std::uint64_t>> presses_;
    std::uint64_t pressesBefore_ = 0;
    bool claiming_ = false;  // our own change of the owner has not been reported yet
    xcb_timestamp_t ownedSince_ = XCB_CURRENT_TIME;
    Transfers transfers_;
};

}  // namespace tavrelon::desktop
