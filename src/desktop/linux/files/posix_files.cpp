#include "desktop/linux/files/posix_files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <climits>

namespace tavrelon::desktop {

namespace {

constexpr mode_t privateFile = S_IRUSR | S_IWUSR;
constexpr qsizetype largestFile = 256LL * 1024 * 1024;
constexpr int longestLinkChain = 40;
constexpr int temporaryNames = 64;

QByteArray folderOf(const QByteArray& path) {
    return path.first(path.lastIndexOf('/') + 1);
}

std::expected<void, PosixError> writeAll(int fd, const QByteArray& content) {
    qsizetype written = 0;
    while (written < content.size()) {
        const auto count =
            ::write(fd, content.constData() + written, static_cast<std::size_t>(content.size() - written));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return failure();
        written += count;
    }
    return {};
}

/// A temporary file that this call alone writes to. It goes with its owner unless it was renamed.
class TemporaryFile {
 public:
    static std::expected<TemporaryFile, PosixError> create(const QByteArray& folder);
    TemporaryFile(TemporaryFile&& other) noexcept
        : path_(std::exchange(other.path_, {})), file_(std::move(other.file_)) {}
    TemporaryFile& operator=(TemporaryFile&&) = delete;
    ~TemporaryFile() {
        if (!path_.isEmpty())
            ::unlink(path_.constData());
    }

    int fd() const { return file_.fd(); }

    std::expected<void, PosixError> renameTo(const QByteArray& target) {
        if (::rename(path_.constData(), target.constData()) != 0)
            return failure();
        path_.clear();
        return {};
    }

 private:
    TemporaryFile(QByteArray path, Descriptor file) : path_(std::move(path)), file_(std::move(file)) {}

    QByteArray path_;
    Descriptor file_;
};

/// Whether nobody but this user put the file there, and no other file is written to with it.
bool isOurs(int fd) {
    struct stat status{};
    return ::fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid() && status.st_nlink == 1;
}

bool hasSecondName(const struct stat& status) {
    return S_ISREG(status.st_mode) && status.st_nlink > 1;
}

/// Whether `path` still names the open file: its last writer may have renamed it before we got the lock.
bool namesFile(const QByteArray& path, int fd) {
    struct stat named{};
    struct stat opened{};
    return ::lstat(path.constData(), &named) == 0 && ::fstat(fd, &opened) == 0 && named.st_ino == opened.st_ino &&
           named.st_dev == opened.st_dev;
}

std::expected<TemporaryFile, PosixError> TemporaryFile::create(const QByteArray& folder) {
    // The names are few and fixed, and a lock says which one is in use: what a killed process left behind is taken up
    // by a later write instead of piling up with the user's texts in it.
    int code = EAGAIN;
    for (int i = 0; i < temporaryNames; ++i) {
        auto path = folder + ".tavrelon-write-" + QByteArray::number(i);
        Descriptor file(::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, privateFile));
        if (!file) {  // the folder refuses, or another account left this one behind
            code = errno;
            continue;
        }
        code = EAGAIN;
        // A file system without locks has to do without: the only other writer would be a second instance.
        const bool taken = ::flock(file.fd(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        if (taken || !namesFile(path, file.fd()) || !isOurs(file.fd()))
            continue;
        TemporaryFile owned(std::move(path), std::move(file));
        if (::fchmod(owned.fd(), privateFile) != 0 || ::ftruncate(owned.fd(), 0) != 0)
            return failure();
        return owned;
    }
    return failure(code);
}

/// Makes a rename last through a loss of power. Not every file system can, and the content is safe either way.
void flushFolder(const QByteArray& folder) {
    const Descriptor opened(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened)
        ::fsync(opened.fd());
}

}  // namespace

Descriptor::~Descriptor() {
    if (fd_ >= 0)
        ::close(fd_);
}

std::expected<QByteArray, PosixError> readRegularFile(const QByteArray& path) {
    // Without O_NONBLOCK the opening of a pipe would wait for its writer.
    const Descriptor file(::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status{};
    if (!file || ::fstat(file.fd(), &status) != 0)
        return failure();
    if (S_ISDIR(status.st_mode))
        return failure(EISDIR);
    if (!S_ISREG(status.st_mode))
        return failure(EINVAL);
    QByteArray content;
    std::array<char, 65536> block{};
    for (;;) {
        const auto count = ::read(file.fd(), block.data(), block.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return failure();
        if (count == 0)
            return content;
        if (content.size() + count > largestFile)
            return failure(EFBIG);
        content.append(block.data(), count);
    }
}

std::expected<QByteArray, PosixError> followedLinks(QByteArray path) {
    std::array<char, PATH_MAX> destination{};
    for (int i = 0; i < longestLinkChain; ++i) {
        const auto length = ::readlink(path.constData(), destination.data(), destination.size());
        if (length < 0 && (errno == EINVAL || errno == ENOENT))  // no link, or nothing there yet
            return path;
        if (length < 0)
            return failure();
        const QByteArray next(destination.data(), length);
        path = next.startsWith('/') ? next : folderOf(path) + next;
    }
    return failure(ELOOP);
}

std::expected<void, PosixError> replaceFile(const QByteArray& target, const QByteArray& content) {
    struct stat status{};
    if (::lstat(target.constData(), &status) == 0 && hasSecondName(status))
        return failure(EMLINK);
    const auto folder = folderOf(target);
    auto temporary = TemporaryFile::create(folder);
    if (!temporary)
        return std::unexpected(temporary.error());
    if (const auto written = writeAll(temporary->fd(), content); !written)
        return written;
    if (::fsync(temporary->fd()) != 0)
        return failure();
    const auto renamed = temporary->renameTo(target);
    if (renamed)
        flushFolder(folder);
    return renamed;
}

std::expected<void, PosixError> overwriteFile(const QByteArray& target, const QByteArray& content) {
    const Descriptor file(::open(target.constData(), O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status{};
    if (!file || ::fstat(file.fd(), &status) != 0)
        return failure();
    if (hasSecondName(status))
        return failure(EMLINK);
    const bool regular = S_ISREG(status.st_mode);
    if (regular && content.size() > status.st_size) {
        const int code = ::posix_fallocate(file.fd(), status.st_size, content.size() - status.st_size);
        if (code != 0) {
            static_cast<void>(::ftruncate(file.fd(), status.st_size));
            return failure(code);
        }
    }
    if (const auto written = writeAll(file.fd(), content); !written)
        return written;
    if (regular && (::ftruncate(file.fd(), content.size()) != 0 || ::fsync(file.fd()) != 0))
        return failure();
    return {};
}

}  // namespace tavrelon::desktop
