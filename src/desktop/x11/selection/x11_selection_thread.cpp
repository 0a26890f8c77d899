#include "desktop/x11/selection/x11_selection_thread.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>

namespace tavrelon::desktop {

using platform::PasteboardError;

namespace {

/// How long an owner that never answered counts as hung.
constexpr std::chrono::seconds hungFor{2};

}  // namespace

std::expected<std::unique_ptr<SelectionThread>, QString> SelectionThread::start(const QByteArray& displayName,
                                                                                SelectionName selection,
                                                                                const SelectionReadLimits& limits) {
    auto connection = SelectionConnection::open(displayName, selection);
    if (!connection)
        return std::unexpected(connection.error());
    auto wake = std::make_unique<X11ThreadWake>();
    if (!wake->isOpen())
        return std::unexpected(QStringLiteral("The clipboard is not available: no file descriptors left"));
    return std::unique_ptr<SelectionThread>(new SelectionThread(std::move(*connection), limits, std::move(wake)));
}

SelectionThread::SelectionThread(std::unique_ptr<SelectionConnection> connection, const SelectionReadLimits& limits,
                                 std::unique_ptr<X11ThreadWake> wake)
    : connection_(std::move(connection)),
      limits_(limits),
      wake_(std::move(wake)),
      socket_(xcb_get_file_descriptor(connection_->xcb())),
      server_(*connection_) {
    thread_ = std::thread([this] { run(); });
}

SelectionThread::~SelectionThread() {
    enqueue([this] {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    });
    // The thread may be waiting for a server that somebody holds; without a connection it no longer does.
    if (ended_.get_future().wait_for(callLimit) != std::future_status::ready)
        ::shutdown(socket_, SHUT_RDWR);
    thread_.join();
}

void SelectionThread::enqueue(std::move_only_function<void()> command) {
    {
        const std::lock_guard lock(mutex_);
        commands_.push_back(std::move(command));
    }
    wake_->signal();
}

template <typename T>
std::optional<T> SelectionThread::call(std::move_only_function<T()> command) {
    std::promise<T> promise;
    auto future = promise.get_future();
    enqueue([promise = std::move(promise), command = std::move(command)]() mutable { promise.set_value(command()); });
    if (future.wait_for(callLimit) != std::future_status::ready)
        return std::nullopt;
    return future.get();
}

std::int64_t SelectionThread::changeCount() {
    call<bool>([this] {
        catchUp();
        return true;
    });
    return changeCount_;
}

bool SelectionThread::offer(platform::PasteboardItem item) {
    return call<bool>([this, item = std::move(item)]() mutable {
               const bool taken = server_.offer(SelectionContent(std::move(item), knownForms_));
               catchUp();
               return taken;
           })
        .value_or(false);
}

bool SelectionThread::release() {
    return call<bool>([this] {
               server_.release();
               catchUp();
               return true;
           })
        .value_or(false);
}

void SelectionThread::countPresses(std::shared_ptr<const std::atomic<std::uint64_t>> presses) {
    enqueue([this, presses = std::move(presses)]() mutable { server_.countPresses(std::move(presses)); });
}

bool SelectionThread::wasFetched() {
    return call<bool>([this] { return server_.wasFetched(); }).value_or(false);
}

std::uint64_t SelectionThread::read(SelectionReader::Kind kind, ReadDone done) {
    const auto id = nextReading_++;
    enqueue([this, reading = Reading{.id = id, .kind = kind, .done = std::move(done)}]() mutable {
        readings_.push_back(std::move(reading));
    });
    return id;
}

void SelectionThread::abandon(std::uint64_t reading) {
    enqueue([this, reading] {
        if (!readings_.empty() && readings_.front().id == reading)
            reader_.reset();
        std::erase_if(readings_, [&](const Reading& waiting) { return waiting.id == reading; });
    });
}

SelectionThread::HandOver SelectionThread::handOver(std::chrono::milliseconds limit) {
    std::promise<HandOver> promise;
    auto future = promise.get_future();
    enqueue([this, promise = std::move(promise)]() mutable { beginHandOver(std::move(promise)); });
    return future.wait_for(limit) == std::future_status::ready ? future.get() : HandOver::Failed;
}

void SelectionThread::run() {
    for (;;) {
        runCommands();
        {
            const std::lock_guard lock(mutex_);
            if (stopping_)
                break;
        }
        if (connection_->isBroken())
            failEverything();
        else {
            dispatchEvents();
            expire();
            advanceReadings();
        }
        waitForWork();
    }
    failEverything();
    ended_.set_value();
}

void SelectionThread::runCommands() {
    for (;;) {
        std::move_only_function<void()> command;
        {
            const std::lock_guard lock(mutex_);
            if (commands_.empty() || stopping_)
                return;
            command = std::move(commands_.front());
            commands_.pop_front();
        }
        command();
    }
}

void SelectionThread::catchUp() {
    connection_->synchronize();
    dispatchEvents();
}

void SelectionThread::dispatchEvents() {
    while (const auto event = connection_->nextEvent())
        dispatch(*event);
}

void SelectionThread::dispatch(const xcb_generic_event_t& event) {
    const auto type = static_cast<std::uint8_t>(event.response_type & 0x7f);
    if (type == connection_->ownerEvent()) {
        ownerChanged(reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event));
        return;
    }
    switch (type) {
        case 0:  // an error: of all our requests only those about foreign windows can fail
            if (reinterpret_cast<const xcb_generic_error_t&>(event).error_code == XCB_WINDOW)
                windowGone(reinterpret_cast<const xcb_generic_error_t&>(event).resource_id);
            break;
        case XCB_SELECTION_REQUEST:
            server_.answer(reinterpret_cast<const xcb_selection_request_event_t&>(event));
            break;
        case XCB_SELECTION_NOTIFY: {
            const auto& notify = reinterpret_cast<const xcb_selection_notify_event_t&>(event);
            if (reader_ && notify.selection == connection_->atoms().selection)
                reader_->selectionNotify(notify);
            if (handOver_ && notify.selection == connection_->atoms().clipboardManager) {
                handOver_->set_value(notify.property == XCB_ATOM_NONE ? HandOver::Failed : HandOver::Saved);
                handOver_.reset();
            }
            break;
        }
        case XCB_PROPERTY_NOTIFY: {
            const auto& changed = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            if (changed.state == XCB_PROPERTY_DELETE)
                server_.propertyDeleted(changed.window, changed.atom);
            else if (reader_)
                reader_->propertyChanged(changed.window, changed.atom);
            break;
        }
        case XCB_DESTROY_NOTIFY:
            windowGone(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
            break;
        default:
            break;
    }
}

void SelectionThread::ownerChanged(const xcb_xfixes_selection_notify_event_t& event) {
    ++changeCount_;
    server_.ownerChanged(event);
    if (event.subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER)
        currentOwner_ = event.owner;
    else if (reader_)
        reader_->windowGone(currentOwner_);
}

void SelectionThread::windowGone(xcb_window_t window) {
    server_.windowGone(window);
}

void SelectionThread::advanceReadings() {
    while (!readings_.empty()) {
        if (!reader_)
            beginReading();
        if (!reader_)
            continue;  // answered at once
        if (!reader_->outcome())
            return;
        auto outcome = *reader_->outcome();
        if (!outcome && outcome.error() == PasteboardError::TimedOut && !reader_->heardFromOwner())
            hung_ = {.window = reader_->owner(), .until = SelectionClock::now() + hungFor};
        if (outcome && readings_.front().kind == SelectionReader::Kind::Items)
            knownForms_ = outcome->forms;
        endReading(std::move(outcome));
    }
}

void SelectionThread::beginReading() {
    catchUp();
    if (connection_->isBroken()) {  // what we owned is nobody's any more
        endReading(std::unexpected(PasteboardError::Failed));
        return;
    }
    if (server_.owns()) {
        const auto& content = server_.content();
        endReading(SelectionFindings{.item = content.item(), .forms = {}, .text = content.text()});
        return;
    }
    if (SelectionClock::now() < hung_.until && connection_->ownerOf(connection_->atoms().selection) == hung_.window) {
        endReading(std::unexpected(PasteboardError::TimedOut));
        return;
    }
    reader_.emplace(*connection_, readings_.front().kind, limits_);
    currentOwner_ = reader_->owner();
}

void SelectionThread::endReading(SelectionOutcome outcome) {
    reader_.reset();
    auto done = std::move(readings_.front().done);
    readings_.pop_front();
    done(std::move(outcome));
}

void SelectionThread::beginHandOver(std::promise<HandOver> answer) {
    catchUp();
    const auto& atoms = connection_->atoms();
    if (!server_.owns() || connection_->selection() != SelectionName::Clipboard) {
        answer.set_value(HandOver::NothingToSave);
        return;
    }
    if (connection_->ownerOf(atoms.clipboardManager) == XCB_NONE) {
        answer.set_value(HandOver::NoManager);
        return;
    }
    handOver_ = std::move(answer);
    const auto targets = connection_->atomsOf(server_.content().targets());
    xcb_change_property(connection_->xcb(), XCB_PROP_MODE_REPLACE, connection_->window(), atoms.transfer, XCB_ATOM_ATOM,
                        32, static_cast<std::uint32_t>(targets.size()), targets.data());
    xcb_convert_selection(connection_->xcb(), connection_->window(), atoms.clipboardManager, atoms.saveTargets,
                          atoms.transfer, connection_->serverTime());
}

void SelectionThread::expire() {
    const auto now = SelectionClock::now();
    server_.dropStalled(now);
    if (reader_)
        reader_->expire(now);
}

int SelectionThread::pollTimeout() const {
    auto next = server_.nextDeadline();
    if (reader_)
        next = std::min(next.value_or(reader_->deadline()), reader_->deadline());
    if (!next)
        return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*next - SelectionClock::now());
    return static_cast<int>(std::max(left.count(), std::chrono::milliseconds::rep{0}));
}

void SelectionThread::waitForWork() {
    const bool broken = connection_->isBroken();
    if (!broken) {
        xcb_flush(connection_->xcb());
        // The flush may have read events, of which the socket then says nothing any more.
        if (connection_->hasQueuedEvent())
            return;
    }
    std::array<pollfd, 2> sources{
        {{.fd = wake_->descriptor(), .events = POLLIN, .revents = 0},
         {.fd = xcb_get_file_descriptor(connection_->xcb()), .events = POLLIN, .revents = 0}}};
    ::poll(sources.data(), broken ? 1 : 2, broken ? -1 : pollTimeout());
    wake_->clear();
}

void SelectionThread::failEverything() {
    reader_.reset();
    while (!readings_.empty())
        endReading(std::unexpected(PasteboardError::Failed));
    if (handOver_) {
        handOver_->set_value(HandOver::Failed);
        handOver_.reset();
    }
}

}  // namespace tavrelon::desktop
