#pragma once

#include <deque>
#include <memory>
#include <set>

#include "desktop/wayland/clipboard/clipboard_reading.h"

namespace tavrelon::desktop {

/// The clipboard of the seat as the compositor tells it: what is offered there, and what we offer. Made and used on the
/// Wayland thread; it dies there too.
class WaylandClipboard {
 public:
    enum class Kind { Items, Text };
    using ReadDone = std::move_only_function<void(ClipboardReading::Outcome)>;

    /// `presses` counts the keys that the program has posted.
    WaylandClipboard(WaylandConnection& connection, std::shared_ptr<std::atomic<std::uint64_t>> presses,
                     const ClipboardLimits& limits);
    WaylandClipboard(const WaylandClipboard&) = delete;
    WaylandClipboard& operator=(const WaylandClipboard&) = delete;
    ~WaylandClipboard();

    std::int64_t changes() const { return changes_; }

    /// Whether what we put there last was fetched after a key of ours. Clipboard managers fetch as soon as something is
    /// offered, before there is a key.
    bool wasFetched() const { return wasFetched_; }

    void offer(platform::PasteboardItem item);
    void clear();

    /// Reads what is there; `done` is called once, unless the reading is abandoned.
    void read(std::uint64_t id, Kind kind, ReadDone done);
    void abandon(std::uint64_t id);

 private:
    struct Reading {
        std::uint64_t id;
        Kind kind;
        ReadDone done;
    };
    /// What a client fetches from us.
    struct Serving {
        QByteArray bytes;
        qsizetype written = 0;
        std::uint64_t timer = 0;
    };

    static const data_control::DeviceListener deviceListener;
    static const data_control::SourceListener sourceListener;
    static const data_control::OfferListener offerListener;

    void announced(data_control::Offer* offer);
    void selected(data_control::Offer* offer);
    void dropOffer(data_control::Offer* offer);
    void send(const QString& type, int descriptor);
    void write(int descriptor);
    void endServing(int descriptor);
    void withdraw();
    void readNext();
    void finishReading(ClipboardReading::Outcome outcome);

    WaylandConnection& connection_;
    std::shared_ptr<std::atomic<std::uint64_t>> presses_;
    ClipboardLimits limits_;
    data_control::Device* device_;
    std::map<data_control::Offer*, QStringList> offers_;  ///< by their types
    data_control::Offer* current_ = nullptr;
    data_control::Source* source_ = nullptr;  ///< ours, while it is on the clipboard
    platform::PasteboardItem offered_;
    std::uint64_t pressesAtOffer_ = 0;
    bool wasFetched_ = false;
    bool knowsState_ = false;
    std::int64_t changes_ = 1;
    std::map<int, Serving> servings_;
    std::deque<Reading> readings_;
    std::unique_ptr<ClipboardReading> reader_;
    std::uint64_t nextReading_ = 0;  ///< the timer of its begin
};

}  // namespace tavrelon::desktop
