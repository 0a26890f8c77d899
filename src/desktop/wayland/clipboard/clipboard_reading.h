#pragma once

#include <QStringList>
#include <expected>
#include <functional>
#include <optional>
#include <vector>

#include "desktop/wayland/connection/wayland_connection.h"
#include "platform/pasteboard.h"

namespace tavrelon::desktop {

/// The bounds of one reading of another application's clipboard.
struct ClipboardLimits {
    std::chrono::milliseconds silence{1000};  ///< to the first byte of a form, and between two pieces
    std::chrono::milliseconds total{5000};
    qsizetype bytes = qsizetype{64} << 20;  ///< of all forms together
};

/// Reads forms of an offer one after the other, each through a pipe of its own. A form that is empty, too slow or too
/// large is left out; the reading fails when a text or a picture is lost in all its forms. Wayland thread.
class ClipboardReading {
 public:
    using Outcome = std::expected<platform::PasteboardItem, platform::PasteboardError>;

    /// `receive` asks the owner to write a form into a descriptor. `done` is called once, from within an event, and may
    /// end the reading.
    ClipboardReading(WaylandConnection& connection, QStringList types, const ClipboardLimits& limits,
                     std::function<void(const QString& type, int descriptor)> receive,
                     std::function<void(Outcome)> done);
    ClipboardReading(const ClipboardReading&) = delete;
    ClipboardReading& operator=(const ClipboardReading&) = delete;
    ~ClipboardReading();

    void start() { readNext(); }

 private:
    using Clock = WaylandConnection::Clock;

    void readNext();
    void readable();
    void waitOn();
    void endForm(std::optional<platform::PasteboardError> lost);
    void closePipe();
    Outcome outcome();

    WaylandConnection& connection_;
    QStringList remaining_;
    ClipboardLimits limits_;
    std::function<void(const QString&, int)> receive_;
    std::function<void(Outcome)> done_;
    Clock::time_point end_;
    QString type_;
    QByteArray bytes_;
    qsizetype received_ = 0;
    int pipe_ = -1;
    std::uint64_t timer_ = 0;
    platform::PasteboardItem item_;
    std::vector<std::pair<QString, platform::PasteboardError>> lost_;
};

}  // namespace tavrelon::desktop
