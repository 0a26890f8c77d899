#pragma once

#include <xcb/xcb.h>

#include <QByteArray>
#include <QHash>
#include <QString>
#include <deque>
#include <expected>
#include <span>
#include <vector>

#include "desktop/x11/connection/x11_connection.h"

namespace tavrelon::desktop {

/// Which of the two selections: what was copied, or what is selected at the moment.
enum class SelectionName { Clipboard, Primary };

/// The names that the selection protocol itself uses; `selection` is the one that this is about.
struct SelectionAtoms {
    xcb_atom_t selection, clipboardManager, targets, timestamp, multiple, atomPair, saveTargets, incr, stamp, transfer;
};

/// What a property held. `type` is 0 where there was no such property; `truncated` where it was longer than asked for.
struct PropertyValue {
    xcb_atom_t type = XCB_ATOM_NONE;
    int format = 8;
    QByteArray bytes;
    bool truncated = false;

    std::vector<std::uint32_t> atoms() const;
};

/// A connection to the X server for selections alone, with a hidden window that owns them. The thread that uses it
/// owns it; it waits for the server only, never for another client.
class SelectionConnection {
 public:
    enum class AfterRead { Keep, Delete };

    /// The error text says what is missing.
    static std::expected<std::unique_ptr<SelectionConnection>, QString> open(const QByteArray& displayName,
                                                                             SelectionName selection);
    SelectionConnection(const SelectionConnection&) = delete;
    SelectionConnection& operator=(const SelectionConnection&) = delete;
    ~SelectionConnection();

    xcb_connection_t* xcb() const { return connection_; }
    xcb_window_t window() const { return window_; }
    SelectionName selection() const { return selection_; }
    const SelectionAtoms& atoms() const { return atoms_; }
    std::uint8_t ownerEvent() const { return ownerEvent_; }
    bool isBroken() const { return xcb_connection_has_error(connection_) != 0; }

    /// The most bytes that go into one property; more goes in increments.
    qsizetype directLimit() const { return directLimit_; }

    xcb_atom_t atom(const QString& name);
    std::vector<xcb_atom_t> atomsOf(const std::vector<QString>& names);
    std::vector<QString> namesOf(std::span<const xcb_atom_t> atoms);
    QString nameOf(xcb_atom_t atom) { return namesOf(std::span(&atom, 1)).front(); }

    /// A new unmapped window that reports changes of its properties.
    xcb_window_t createWindow();

    PropertyValue readProperty(xcb_window_t window, xcb_atom_t property, AfterRead after, qsizetype maximumBytes);
    xcb_window_t ownerOf(xcb_atom_t selection);

    /// Whether the client that made this window has the keyboard focus, in whichever of its windows.
    bool hasFocus(xcb_window_t window);

    /// The server's time now. Events that come meanwhile are kept for `nextEvent`.
    xcb_timestamp_t serverTime();

    /// Waits until everything that happened before this call is in the queue of events.
    void synchronize();

    /// The next event; null when none has come yet.
    XPointer<xcb_generic_event_t> nextEvent();
    bool hasQueuedEvent();

 private:
    SelectionConnection(xcb_connection_t* connection, SelectionName selection)
        : connection_(connection), selection_(selection) {}
    std::expected<void, QString> prepare(int screenNumber);
    void internProtocolAtoms();
    void remember(const QString& name, xcb_atom_t atom);
    void queueArrived();

    xcb_connection_t* connection_;
    SelectionName selection_;
    xcb_window_t root_ = XCB_NONE;
    xcb_window_t window_ = XCB_NONE;
    SelectionAtoms atoms_{};
    std::uint8_t ownerEvent_ = 0;
    qsizetype directLimit_ = 0;
    std::deque<XPointer<xcb_generic_event_t>> queue_;
    QHash<QString, xcb_atom_t> atomByName_;
    QHash<xcb_atom_t, QString> nameByAtom_;
};

}  // namespace tavrelon::desktop
