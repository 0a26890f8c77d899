#pragma once

#include <QByteArray>
#include <cerrno>
#include <expected>
#include <utility>

namespace tavrelon::desktop {

/// An `errno` value.
enum class PosixError : int {};

inline std::unexpected<PosixError> failure(int code = errno) {
    return std::unexpected(PosixError{code});
}

/// An open file, closed with its owner.
class Descriptor {
 public:
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor();

    int fd() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }

 private:
    int fd_;
};

/// All of the file, or an error; never more than 256 MB.
std::expected<QByteArray, PosixError> readRegularFile(const QByteArray& path);

/// The file that a chain of symbolic links ends at, whether it exists or not; the path itself if it is no link.
std::expected<QByteArray, PosixError> followedLinks(QByteArray path);

/// Gives the content to a temporary file in the target's folder, flushes it and renames it to the target. Neither of
/// the two writes to a file that has a second name (EMLINK): it may be another file of the user's.
std::expected<void, PosixError> replaceFile(const QByteArray& target, const QByteArray& content);

/// Overwrites an existing file. The space is reserved first, so that a full disk leaves the old content; only a crash
/// in the midst of the writing does not.
std::expected<void, PosixError> overwriteFile(const QByteArray& target, const QByteArray& content);

}  // namespace tavrelon::desktop
