#pragma once

#include <wayland-client.h>

#include <QString>
#include <atomic>
#include <chrono>
#include <deque>
#include <expected>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "desktop/wayland/protocol/data_control.h"
#include "desktop/wayland/protocol/fake_input.h"
#include "desktop/wayland/protocol/virtual_keyboard.h"

namespace tavrelon::desktop {

/// The program's connection with the compositor, and the thread that speaks there, so that other clients are
/// served while the main thread is busy. If the compositor goes away, calls fail at once and nothing is told any more.
class WaylandConnection {
 public:
    using Clock = std::chrono::steady_clock;
    using Command = std::move_only_function<void()>;

    /// What one call on the connection may cost its caller.
    static constexpr std::chrono::milliseconds callLimit{250};
    /// The same while the program starts: at a login everything starts at once.
    static constexpr std::chrono::milliseconds startLimit{5000};

    /// What the compositor has to have, and the ways to post keys of which it has one.
    struct Globals {
        wl_seat* seat = nullptr;
        data_control::Manager* dataControl = nullptr;
        virtual_keyboard::Manager* virtualKeyboards = nullptr;
        bool givesPictures = false;  ///< of its screen; where not, only that is missing
        fake_input::Device* fakeInput = nullptr;
    };

    /// Connects to the compositor that the environment names, or takes over a socket that is connected with it. The
    /// error says what is missing.
    static std::expected<std::unique_ptr<WaylandConnection>, QString> open(std::optional<int> socket = std::nullopt);
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;
    /// Ends the thread. What still refers to the connection must be gone.
    ~WaylandConnection();

    const Globals& globals() const { return globals_; }

    /// Runs `command` on the thread, soon. Any thread but that one for the following four.
    void post(Command command);
    /// Runs it there and waits for that; false after `callLimit`, or where nobody is there any more. A command that is
    /// late runs all the same, so it must own what it uses.
    bool call(Command command);
    /// The same, and waits until the compositor has done what was sent, and its answers were heard.
    bool callAndSettle(Command command, std::chrono::milliseconds limit = callLimit);
    bool isBroken() const { return broken_; }

    // On the thread.

    /// Runs `ready` whenever the descriptor has one of these events of `poll`, until `unwatch`; that may be called from
    /// within.
    void watch(int descriptor, short events, std::function<void()> ready);
    void unwatch(int descriptor);
    /// Runs `block` at that time, unless the timer is forgotten.
    std::uint64_t at(Clock::time_point time, std::function<void()> block);
    void forget(std::uint64_t timer);

 private:
    struct Watch {
        short events = 0;
        std::function<void()> ready;
    };
    struct TimedBlock {
        Clock::time_point time;
        std::function<void()> block;
    };

    explicit WaylandConnection(wl_display* display) : display_(display) {}

    bool enqueue(Command command);
    std::expected<void, QString> findGlobals();
    void bind(wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t version);
    bool settleWithin(std::chrono::milliseconds limit);
    bool turn(Clock::time_point until);
    bool send(Clock::time_point until);
    void run();
    void runCommands();
    void runTimers();
    void failEverything();
    Clock::time_point nextTime() const;

    wl_display* display_;
    wl_registry* registry_ = nullptr;
    Globals globals_;
    int wake_ = -1;
    std::atomic<bool> broken_ = false;

    std::mutex mutex_;  // guards commands_ and stopping_
    std::deque<Command> commands_;
    bool stopping_ = false;

    // The thread's own.
    std::map<int, Watch> watches_;
    std::map<std::uint64_t, TimedBlock> timers_;
    std::uint64_t lastTimer_ = 0;

    std::thread thread_;
};

}  // namespace tavrelon::desktop
