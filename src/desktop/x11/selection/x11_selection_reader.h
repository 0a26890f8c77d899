#pragma once

#include <QStringList>
#include <functional>
#include <optional>

#include "desktop/x11/selection/x11_selection_codec.h"
#include "desktop/x11/selection/x11_selection_connection.h"
#include "desktop/x11/selection/x11_selection_server.h"

namespace tavrelon::desktop {

/// The bounds of one reading of another application's clipboard.
struct SelectionReadLimits {
    std::chrono::milliseconds answer{1000};  ///< to the answer to each request, and between two increments
    std::chrono::milliseconds total{5000};
    qsizetype bytes = qsizetype{64} << 20;  ///< of all targets together
};

/// What was found. `item` is filled by a reading of everything, `text` by a reading of the text; both are empty when
/// the clipboard is.
struct SelectionFindings {
    platform::PasteboardItem item;
    SelectionForms forms;
    std::optional<QString> text;
};
using SelectionOutcome = std::expected<SelectionFindings, platform::PasteboardError>;

/// The transfer of one target to a window of ours, in one piece or in increments.
class SelectionConversion {
 public:
    enum class State { Waiting, Increments, Done, Refused, TooLarge };

    SelectionConversion(SelectionConnection& connection, xcb_window_t window, xcb_atom_t target, xcb_timestamp_t time,
                        qsizetype mostBytes);

    void selectionNotify(const xcb_selection_notify_event_t& event);
    void propertyChanged(xcb_atom_t property);

    State state() const { return state_; }
    xcb_atom_t target() const { return target_; }
    const PropertyValue& value() const { return value_; }
    SelectionClock::time_point lastProgress() const { return lastProgress_; }

 private:
    void receiveIncrement();

    SelectionConnection& connection_;
    xcb_window_t window_;
    xcb_atom_t target_;
    qsizetype mostBytes_;
    State state_ = State::Waiting;
    PropertyValue value_;
    SelectionClock::time_point lastProgress_ = SelectionClock::now();
};

/// Reads the clipboard of another application, target by target, through windows of its own, so that nothing that
/// comes late can be taken for an answer to somebody else. A target that is refused, too slow or too large is left out;
/// the reading fails when a text or a picture is lost in all its forms. Selection thread.
class SelectionReader {
 public:
    enum class Kind { Items, Text };

    SelectionReader(SelectionConnection& connection, Kind kind, const SelectionReadLimits& limits);
    SelectionReader(const SelectionReader&) = delete;
    SelectionReader& operator=(const SelectionReader&) = delete;
    ~SelectionReader();

    /// The outcome, once there is one.
    const std::optional<SelectionOutcome>& outcome() const { return outcome_; }
    xcb_window_t owner() const { return owner_; }
    bool heardFromOwner() const { return heardFromOwner_; }

    void selectionNotify(const xcb_selection_notify_event_t& event);
    void propertyChanged(xcb_window_t window, xcb_atom_t property);
    /// The window, or the client that it belonged to, no longer exists.
    void windowGone(xcb_window_t window);

    SelectionClock::time_point deadline() const;
    void expire(SelectionClock::time_point now);

 private:
    void ask(xcb_atom_t target);
    void proceed();
    void take(SelectionConversion conversion);
    void takeTargets(const std::vector<std::uint32_t>& atoms);
    void takeData(const QString& target, const PropertyValue& value);
    void askNext();
    bool keepsFamilyOf(const QString& target) const;
    bool keepsWhatMatters(const QString& lost) const;
    void leaveOut(platform::PasteboardError why);
    void finish();
    void fail(platform::PasteboardError error) { outcome_ = std::unexpected(error); }
    void renewWindow();

    SelectionConnection& connection_;
    Kind kind_;
    SelectionReadLimits limits_;
    SelectionClock::time_point end_;
    xcb_window_t window_;
    xcb_window_t owner_;
    xcb_timestamp_t time_ = XCB_CURRENT_TIME;
    std::optional<SelectionConversion> conversion_;
    QStringList remaining_;
    SelectionFindings findings_;
    qsizetype receivedBytes_ = 0;
    bool heardFromOwner_ = false;
    bool isAnotherForm_ = false;  ///< what is asked for now, of what was received already
    std::vector<std::pair<QString, platform::PasteboardError>> lost_;  ///< targets that were not given
    std::optional<SelectionOutcome> outcome_;
};

}  // namespace tavrelon::desktop
