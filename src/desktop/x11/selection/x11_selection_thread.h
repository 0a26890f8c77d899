#pragma once

#include <atomic>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

#include "desktop/x11/connection/x11_thread_wake.h"
#include "desktop/x11/selection/x11_selection_reader.h"
#include "desktop/x11/selection/x11_selection_server.h"

namespace tavrelon::desktop {

/// The thread that speaks with other clients about the clipboard, so that they are served while the main thread is
/// busy. Every call may come from the main thread; those that wait do so for `callLimit` at most.
class SelectionThread {
 public:
    using ReadDone = std::move_only_function<void(SelectionOutcome)>;
    enum class HandOver { Saved, NothingToSave, NoManager, Failed };

    static constexpr std::chrono::milliseconds callLimit{250};

    static std::expected<std::unique_ptr<SelectionThread>, QString> start(const QByteArray& displayName,
                                                                          SelectionName selection,
                                                                          const SelectionReadLimits& limits);
    SelectionThread(const SelectionThread&) = delete;
    SelectionThread& operator=(const SelectionThread&) = delete;
    /// Ends the thread; what it offered is gone, and readings under way fail. A server that
    /// does not answer is left after `callLimit`.
    ~SelectionThread();

    /// Up to date with the server, unless that does not answer within the limit.
    std::int64_t changeCount();

    /// Takes the clipboard with this item. False when that failed or was not confirmed in time.
    bool offer(platform::PasteboardItem item);
    bool release();

    /// As of `SelectionServer`.
    void countPresses(std::shared_ptr<const std::atomic<std::uint64_t>> presses);

    /// Whether the client with the keyboard focus fetched what was offered last.
    bool wasFetched();

    /// Begins a reading. `done` is called once, on the selection thread, unless the reading is abandoned.
    std::uint64_t read(SelectionReader::Kind kind, ReadDone done);
    void abandon(std::uint64_t reading);

    /// Asks the clipboard manager to keep what we offer, and waits for its answer. What is merely selected is not kept.
    HandOver handOver(std::chrono::milliseconds limit);

 private:
    struct Reading {
        std::uint64_t id;
        SelectionReader::Kind kind;
        ReadDone done;
    };
    struct HungOwner {
        xcb_window_t window = XCB_NONE;
        SelectionClock::time_point until;
    };

    SelectionThread(std::unique_ptr<SelectionConnection> connection, const SelectionReadLimits& limits,
                    std::unique_ptr<X11ThreadWake> wake);

    void enqueue(std::move_only_function<void()> command);
    template <typename T>
    std::optional<T> call(std::move_only_function<T()> command);

    void run();
    void runCommands();
    void catchUp();
    void dispatchEvents();
    void dispatch(const xcb_generic_event_t& event);
    void ownerChanged(const xcb_xfixes_selection_notify_event_t& event);
    void windowGone(xcb_window_t window);
    void advanceReadings();
    void beginReading();
    void endReading(SelectionOutcome outcome);
    void beginHandOver(std::promise<HandOver> answer);
    void expire();
    int pollTimeout() const;
    void waitForWork();
    void failEverything();

    std::unique_ptr<SelectionConnection> connection_;
    SelectionReadLimits limits_;
    std::unique_ptr<X11ThreadWake> wake_;
    int socket_;
    std::atomic<std::int64_t> changeCount_ = 1;
    std::atomic<std::uint64_t> nextReading_ = 1;

    std::mutex mutex_;  // guards commands_ and stopping_
    std::deque<std::move_only_function<void()>> commands_;
    bool stopping_ = false;

    // The selection thread's own.
    SelectionServer server_;
    SelectionForms knownForms_;
    std::deque<Reading> readings_;
    std::optional<SelectionReader> reader_;
    xcb_window_t currentOwner_ = XCB_NONE;
    HungOwner hung_;
    std::optional<std::promise<HandOver>> handOver_;

    std::promise<void> ended_;
    std::thread thread_;
};

}  // namespace tavrelon::desktop
