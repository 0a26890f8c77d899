#pragma once

#include <sys/types.h>

#include <QString>
#include <optional>
#include <utility>

namespace tavrelon::desktop {

/// A connection at whose other end it can be seen which program this is. Compositors grant some things by the path of
/// the process that connects, which one that keeps its memory to itself hides too. So a copy of this process connects,
/// without that care and for as long as this object lives; what the program comes to know later is never in sight. At
/// the start, before there is anything to know.
class SocketInSight {
 public:
    /// Connects to a socket in the file system; absent where nobody takes the connection within a second.
    static std::optional<SocketInSight> connect(const QString& path);
    SocketInSight(SocketInSight&& other) noexcept
        : socket_(std::exchange(other.socket_, -1)),
          copy_(std::exchange(other.copy_, -1)),
          end_(std::exchange(other.end_, -1)) {}
    SocketInSight& operator=(SocketInSight&&) = delete;
    /// Ends the copy. To be kept until the other end has answered, and so has looked.
    ~SocketInSight();

    /// The caller's from now on.
    int takeSocket() { return std::exchange(socket_, -1); }

 private:
    SocketInSight(int socket, pid_t copy, int end) : socket_(socket), copy_(copy), end_(end) {}

    int socket_;
    pid_t copy_;
    int end_;  ///< as long as it is open the copy stays
};

}  // namespace tavrelon::desktop
