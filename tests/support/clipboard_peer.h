#pragma once

#include <xcb/xcb.h>

#include <QByteArray>
#include <QString>
#include <chrono>
#include <cstdlib>
#include <map>
#include <memory>
#include <vector>

namespace tavrelon::testing {

/// What one client gives to another for a target.
struct ClipboardData {
    QString target;
    QString type{};  ///< the target itself where empty
    QByteArray bytes{};
    int format = 8;
};

/// Another client of the X server, with a connection and a window of its own. One thread.
class ClipboardPeer {
 public:
    using Clock = std::chrono::steady_clock;
    struct Deleter {
        void operator()(void* pointer) const { std::free(pointer); }
    };
    using Event = std::unique_ptr<xcb_generic_event_t, Deleter>;
    struct Property {
        QString type;
        QByteArray bytes;
    };

    ClipboardPeer();
    ~ClipboardPeer() { disconnect(); }
    ClipboardPeer(const ClipboardPeer&) = delete;
    ClipboardPeer& operator=(const ClipboardPeer&) = delete;

    xcb_connection_t* xcb() const { return connection_; }
    xcb_window_t window() const { return window_; }
    xcb_atom_t atom(const QString& name);
    QString nameOf(xcb_atom_t atom);

    /// The next event; null when none came in time or the connection is gone.
    Event nextEvent(std::chrono::milliseconds limit);

    /// Reads a property of this peer's window and deletes it.
    Property takeProperty(xcb_atom_t property);
    void put(xcb_window_t window, xcb_atom_t property, const QString& type, int format, const QByteArray& bytes);

    /// Tells whoever asked where the answer is, or that there is none.
    void notify(const xcb_selection_request_event_t& request, xcb_atom_t property);

    /// Keeps the server from answering anybody else until this peer disconnects.
    void holdServer();

    /// Ends the connection as a crash would.
    void disconnect();

 private:
    xcb_connection_t* connection_;
    xcb_window_t window_ = XCB_NONE;
    std::map<QString, xcb_atom_t> atoms_;
};

/// The bytes of a list of atoms or numbers, as a property holds them, and back.
QByteArray bytesOf(const std::vector<std::uint32_t>& numbers);
std::vector<std::uint32_t> numbersOf(const QByteArray& bytes);

}  // namespace tavrelon::testing
