#include "desktop/wayland/connection/wayland_connection.h"

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <string_view>
#include <vector>

#include "desktop/wayland/protocol/requests.h"
#include "desktop/wayland/protocol/screencopy.h"

namespace tavrelon::desktop {

using namespace std::chrono_literals;

namespace {

/// For the compositor's first answers, while the program starts; at a login it may have much else to do, and without
/// them nothing native is served until the next start.
constexpr auto openingLimit = 8000ms;
/// So much may be sent before the compositor must take it; a client that sends on loses the connection.
constexpr auto sendLimit = 1000ms;
constexpr auto never = WaylandConnection::Clock::time_point::max();

int pollTimeout(WaylandConnection::Clock::time_point until) {
    if (until == never)
        return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - WaylandConnection::Clock::now());
    return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, 60000));
}

/// Runs once the compositor has done what was sent before it.
class Settled {
 public:
    static void ask(wl_display* display, std::function<void()> done) {
        static constexpr wl_callback_listener listener{[](void* data, wl_callback* callback, std::uint32_t) {
            const std::unique_ptr<Settled> self(static_cast<Settled*>(data));
            wl_callback_destroy(callback);
            self->done_();
        }};
        auto* callback = wl_display_sync(display);
        if (callback)
            wl_callback_add_listener(callback, &listener, new Settled(std::move(done)));
    }

 private:
    explicit Settled(std::function<void()> done) : done_(std::move(done)) {}
    std::function<void()> done_;
};

}  // namespace

std::expected<std::unique_ptr<WaylandConnection>, QString> WaylandConnection::open(std::optional<int> socket) {
    auto* display = socket ? wl_display_connect_to_fd(*socket) : wl_display_connect(nullptr);
    if (!display)
        return std::unexpected(QStringLiteral("The Wayland compositor cannot be reached."));
    std::unique_ptr<WaylandConnection> connection(new WaylandConnection(display));
    connection->wake_ = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (connection->wake_ < 0)
        return std::unexpected(QStringLiteral("There are no file descriptors left."));
    if (const auto found = connection->findGlobals(); !found)
        return std::unexpected(found.error());
    connection->thread_ = std::thread([self = connection.get()] { self->run(); });
    return connection;
}

WaylandConnection::~WaylandConnection() {
    if (thread_.joinable()) {
        {
            const std::lock_guard lock(mutex_);
            stopping_ = true;
        }
        ::eventfd_write(wake_, 1);
        thread_.join();
    }
    if (wake_ >= 0)
        ::close(wake_);
    for (auto* proxy : {proxyOf(registry_), proxyOf(globals_.seat), proxyOf(globals_.dataControl),
                        proxyOf(globals_.virtualKeyboards), proxyOf(globals_.fakeInput)})
        if (proxy)
            wl_proxy_destroy(proxy);
    wl_display_disconnect(display_);
}

std::expected<void, QString> WaylandConnection::findGlobals() {
    static constexpr wl_registry_listener listener{
        [](void* data, wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t version) {
            static_cast<WaylandConnection*>(data)->bind(registry, name, interface, version);
        },
        [](void*, wl_registry*, std::uint32_t) {}};
    registry_ = wl_display_get_registry(display_);
    wl_registry_add_listener(registry_, &listener, this);
    if (!settleWithin(openingLimit))
        return std::unexpected(QStringLiteral("The Wayland compositor does not answer."));
    if (!globals_.seat || !globals_.dataControl)
        return std::unexpected(
            QStringLiteral("The Wayland compositor has no %1.")
                .arg(!globals_.seat ? QStringLiteral("seat") : QStringLiteral("clipboard for programs")));
    return {};
}

void WaylandConnection::bind(wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t version) {
    const auto take = [&]<typename T>(T*& global, const wl_interface& wanted, std::uint32_t known) {
        if (!global && std::string_view(interface) == wanted.name)
            global = static_cast<T*>(wl_registry_bind(registry, name, &wanted, std::min(version, known)));
    };
    take(globals_.seat, wl_seat_interface, 1);
    take(globals_.dataControl, data_control::managerInterface, 2);
    take(globals_.virtualKeyboards, virtual_keyboard::managerInterface, 1);
    if (std::string_view(interface) == screencopy::managerInterface.name)
        globals_.givesPictures = true;
    take(globals_.fakeInput, fake_input::deviceInterface, 4);
}

bool WaylandConnection::settleWithin(std::chrono::milliseconds limit) {
    // Shared, since the answer may come when nobody waits for it any more.
    const auto settled = std::make_shared<bool>(false);
    Settled::ask(display_, [settled] { *settled = true; });
    const auto until = Clock::now() + limit;
    while (!*settled && Clock::now() < until)
        if (!turn(until))
            return false;
    return *settled;
}

bool WaylandConnection::enqueue(Command command) {
    {
        const std::lock_guard lock(mutex_);
        if (broken_)
            return false;
        commands_.push_back(std::move(command));
    }
    ::eventfd_write(wake_, 1);
    return true;
}

void WaylandConnection::post(Command command) {
    enqueue(std::move(command));
}

bool WaylandConnection::call(Command command) {
    auto done = std::make_shared<std::promise<void>>();
    auto future = done->get_future();
    const bool isOnItsWay = enqueue([command = std::move(command), done = std::move(done)]() mutable {
        command();
        done->set_value();
    });
    return isOnItsWay && future.wait_for(callLimit) == std::future_status::ready && !broken_;
}

bool WaylandConnection::callAndSettle(Command command, std::chrono::milliseconds limit) {
    auto done = std::make_shared<std::promise<void>>();
    auto future = done->get_future();
    const bool isOnItsWay = enqueue([this, command = std::move(command), done = std::move(done)]() mutable {
        command();
        Settled::ask(display_, [done = std::move(done)] { done->set_value(); });
    });
    return isOnItsWay && future.wait_for(limit) == std::future_status::ready && !broken_;
}

void WaylandConnection::watch(int descriptor, short events, std::function<void()> ready) {
    watches_[descriptor] = {events, std::move(ready)};
}

void WaylandConnection::unwatch(int descriptor) {
    watches_.erase(descriptor);
}

std::uint64_t WaylandConnection::at(Clock::time_point time, std::function<void()> block) {
    timers_[++lastTimer_] = {time, std::move(block)};
    return lastTimer_;
}

void WaylandConnection::forget(std::uint64_t timer) {
    timers_.erase(timer);
}

WaylandConnection::Clock::time_point WaylandConnection::nextTime() const {
    const auto first =
        std::ranges::min_element(timers_, {}, [](const auto& timer) -> const auto& { return timer.second.time; });
    return first == timers_.end() ? never : first->second.time;
}

void WaylandConnection::run() {
    // Signals are the main thread's; a reader that closes its pipe shows in what `write` gives.
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
    for (;;) {
        runCommands();
        runTimers();
        {
            const std::lock_guard lock(mutex_);
            if (stopping_)
                break;
        }
        if (!turn(nextTime()))
            break;
    }
    send(Clock::now() + callLimit);
    failEverything();
}

/// Whoever waits is let go: a promise that is dropped ends its wait, and what had a time is out of it.
void WaylandConnection::failEverything() {
    std::deque<Command> dropped;
    {
        const std::lock_guard lock(mutex_);
        broken_ = true;
        dropped.swap(commands_);
    }
    watches_.clear();
    while (!timers_.empty()) {
        const auto block = std::move(timers_.begin()->second.block);
        timers_.erase(timers_.begin());
        block();
    }
}

void WaylandConnection::runCommands() {
    std::deque<Command> commands;
    {
        const std::lock_guard lock(mutex_);
        commands.swap(commands_);
    }
    for (auto& command : commands) {
        command();
        // Each is sent before the next is made: what the library cannot keep it takes for the end of the connection.
        if (!send(Clock::now() + sendLimit))
            return;
    }
}

void WaylandConnection::runTimers() {
    const auto now = Clock::now();
    std::vector<std::function<void()>> due;
    std::erase_if(timers_, [&](auto& timer) {
        if (timer.second.time > now)
            return false;
        due.push_back(std::move(timer.second.block));
        return true;
    });
    for (const auto& block : due)
        block();
}

/// Sends all that is to be sent; false when the compositor does not take it, or is gone.
bool WaylandConnection::send(Clock::time_point until) {
    while (wl_display_flush(display_) < 0) {
        if (errno != EAGAIN || Clock::now() >= until)
            return false;
        pollfd writable{wl_display_get_fd(display_), POLLOUT, 0};
        ::poll(&writable, 1, pollTimeout(until));
    }
    return true;
}

/// Waits for whatever comes first and deals with it. False when the connection is lost.
bool WaylandConnection::turn(Clock::time_point until) {
    while (wl_display_prepare_read(display_) != 0)
        if (wl_display_dispatch_pending(display_) < 0)
            return false;
    if (!send(Clock::now() + sendLimit)) {
        wl_display_cancel_read(display_);
        return false;
    }
    std::vector<pollfd> waits{{wl_display_get_fd(display_), POLLIN, 0}, {wake_, POLLIN, 0}};
    for (const auto& [descriptor, watch] : watches_)
        waits.push_back({descriptor, watch.events, 0});
    ::poll(waits.data(), waits.size(), pollTimeout(until));
    if (waits[0].revents == 0)
        wl_display_cancel_read(display_);
    else if (wl_display_read_events(display_) < 0)
        return false;
    eventfd_t count = 0;
    ::eventfd_read(wake_, &count);
    if (wl_display_dispatch_pending(display_) < 0)
        return false;
    for (const auto& wait : waits) {
        const auto found = watches_.find(wait.fd);
        if (wait.revents != 0 && found != watches_.end()) {
            const auto ready = found->second.ready;  // it may end its own watch
            ready();
        }
    }
    return true;
}

}  // namespace tavrelon::desktop
