#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <vector>

#include "async/main_loop.h"
#include "desktop/x11/x11_key_table.h"
#include "platform/event_tap.h"

namespace tavrelon::desktop {

/// Brings seen keys and held keys into one order.
///
/// Every key is seen at once, even while the keyboard is frozen; a key that is to be held arrives a second time when it
/// stops at our grab. Until then it, and all keys behind it, wait. If it does not stop within the limit, somebody else
/// held it, and it is delivered as merely seen.
class KeySequence {
 public:
    static constexpr std::chrono::milliseconds stopLimit{30};

    /// The server's time and key code: what tells two presses apart.
    struct Stamp {
        std::uint32_t time = 0;
        KeyCode code = 0;

        bool operator==(const Stamp&) const = default;
    };

    enum class Expectation { Passes, StopsAtOurGrab };

    void see(const Stamp& stamp, platform::KeyEvent event, Expectation expectation, async::Instant now);

    struct Stopped {
        std::vector<platform::KeyEvent> before;  ///< what was seen earlier; the server keeps the order
        platform::KeyEvent event;
    };

    /// Whether a press is the first of its key or comes from holding it down.
    enum class Origin { Struck, Repeated };

    /// A key stopped at our grab; takes it and all before it. Nothing if it is not waited for: a key that we posted
    /// ourselves, or one that came too late and counts as seen already.
    ///
    /// A struck key has the same time on both of its ways. The server repeats a held key by two timers, one for the
    /// keyboard and one for the session, whose times may differ: there the key and the order decide.
    std::optional<Stopped> stopped(const Stamp& stamp, Origin origin);

    /// While the keyboard is frozen no other key can stop, so no limit runs out.
    void freeze() { frozen_ = true; }
    void thaw(async::Instant now);

    /// When the first key's limit runs out.
    std::optional<async::Instant> deadline() const;

    /// Gives up waiting for the keys whose limit ran out. Only after all that had arrived by then was looked at.
    void expire(async::Instant now);

    /// Takes the keys whose turn it is.
    std::vector<platform::KeyEvent> takeReady();

 private:
    struct Waiting {
        Stamp stamp;
        platform::KeyEvent event;
        std::optional<async::Instant> deadline;  ///< none: ready as soon as it is at the front
    };

    std::deque<Waiting> waiting_;
    bool frozen_ = false;
};

}  // namespace tavrelon::desktop
