#pragma once

#include <array>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "async/main_loop.h"
#include "desktop/xkb/key_table.h"
#include "keys/hotkey_config.h"

namespace tavrelon::desktop {

enum class KeyAction { Press, Release };

/// The keys that this process is about to post, so that they are known when they come by. Any thread.
class PostedKeys {
 public:
    /// The two streams in which keys come by; each has all of them.
    enum class Stream : std::uint8_t { Keys, Strokes };

    /// Posts are forgotten after this time: the server leaves out those that change nothing.
    static constexpr std::chrono::seconds lifetime{2};

    /// Call before the key is posted.
    void expect(KeyCode code, KeyAction action, async::Instant now);

    /// Whether an event on the posting device is the next one of ours; takes it off, and what was left out before it.
    bool take(Stream stream, KeyCode code, KeyAction action, async::Instant now);

    /// Lets go of our own hotkey of these keys for as long as the value lives.
    using MakeWay = std::function<std::shared_ptr<void>(const keys::HotkeyConfig& chord)>;

    /// Main thread. Set by who holds hotkeys: a posted key would be taken for nobody's sake.
    void setMakeWay(MakeWay makeWay) { makeWay_ = std::move(makeWay); }

    /// Main thread. Keep the value until the server has the keys.
    std::shared_ptr<void> makeWay(const keys::HotkeyConfig& chord) const {
        return makeWay_ ? makeWay_(chord) : nullptr;
    }

 private:
    struct Post {
        KeyCode code;
        KeyAction action;
        async::Instant at;
    };

    void forgetOld(async::Instant now);

    MakeWay makeWay_;

    std::mutex mutex_;
    std::array<std::deque<Post>, 2> posts_;  ///< of each stream
};

}  // namespace tavrelon::desktop
