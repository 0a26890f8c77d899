#pragma once

#include <QStringList>
#include <atomic>
#include <thread>

#include "support/clipboard_peer.h"

namespace tavrelon::testing {

/// How an owner of the clipboard treats those who ask.
struct ClipboardManners {
    enum class Answers { Always, Never };
    enum class Break { No, Stalls, Dies };

    Answers answers = Answers::Always;
    std::chrono::milliseconds delay{0};  ///< before each answer
    QStringList refused{};               ///< listed, but not given
    QStringList silent{};                ///< listed, but asking for them gets no answer
    bool listsTargets = true;            ///< whether TARGETS is answered at all

    qsizetype incrementBytes = 0;  ///< 0: in one piece
    Break afterIncrements = Break::No;
    int goodIncrements = 2;            ///< before it breaks
    std::uint32_t announcedBytes = 0;  ///< what an increment transfer announces, 0 as owners may
};

/// Another application that has the clipboard, in a thread of its own. It has it when the constructor returns, keeps it
/// until somebody else takes it, and is gone, as if its process had ended, with this object.
class ClipboardOwner {
 public:
    explicit ClipboardOwner(std::vector<ClipboardData> data, ClipboardManners manners = {});
    ~ClipboardOwner();

    /// How many requests came in.
    int requestCount() const { return requests_; }

 private:
    void run();
    void answer(const xcb_selection_request_event_t& request);
    bool convert(const xcb_selection_request_event_t& request);
    void sendIncrement(const xcb_property_notify_event_t& event);

    std::vector<ClipboardData> data_;
    ClipboardManners manners_;
    ClipboardPeer peer_;
    std::atomic<bool> stop_ = false;
    std::atomic<int> requests_ = 0;

    // The transfer in increments that is under way, one at a time.
    const ClipboardData* sending_ = nullptr;
    xcb_window_t sendingTo_ = XCB_NONE;
    xcb_atom_t sendingProperty_ = XCB_ATOM_NONE;
    qsizetype sent_ = 0;
    int incrementsSent_ = 0;

    std::thread thread_;
};

}  // namespace tavrelon::testing
