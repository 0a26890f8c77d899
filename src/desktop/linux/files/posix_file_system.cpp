#include "desktop/linux/files/posix_file_system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <system_error>

#include "desktop/linux/files/posix_files.h"

namespace tavrelon::desktop {

namespace {

using platform::FileError;

constexpr mode_t privateFolder = S_IRWXU;

/// The path as the system takes it. A relative path would depend on where the program was started, and what follows a
/// null character would be lost.
std::expected<QByteArray, PosixError> nativePath(const QString& path) {
    if (!path.startsWith(u'/') || path.contains(QChar::Null))
        return failure(EINVAL);
    return QFile::encodeName(path);
}

/// What `operation` gives for the path, its error in words.
template <typename Operation>
auto onNativePath(const QString& path, Operation operation) {
    const auto native = nativePath(path);
    auto result = native ? operation(*native) : std::unexpected(native.error());
    using Value = typename decltype(result)::value_type;
    using Described = std::expected<Value, FileError>;
    if (!result) {
        const int code = static_cast<int>(result.error());
        const auto reason = code == EMLINK            ? QStringLiteral("The file has a second name (a hard link)")
                            : code == ENOTRECOVERABLE ? QStringLiteral("It could not be read, and is not replaced")
                                                      : QString::fromLocal8Bit(std::generic_category().message(code));
        return Described(std::unexpect, path + QStringLiteral(": ") + reason);
    }
    if constexpr (std::is_void_v<Value>)
        return Described();
    else
        return Described(std::move(*result));
}

bool isRegularOrMissing(const QByteArray& path) {
    struct stat status{};
    return ::stat(path.constData(), &status) != 0 || S_ISREG(status.st_mode);
}

/// Errors by which a folder, and not the disk, stands in the way of a new file; EBUSY is a target mounted by itself.
bool folderRefuses(PosixError error) {
    const int code = static_cast<int>(error);
    return code == EACCES || code == EPERM || code == EROFS || code == EBUSY;
}

/// What cannot be read may be whole and only out of reach for now: its content is not replaced.
std::expected<void, PosixError> ensureReadable(const QByteArray& path) {
    const Descriptor file(::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file && errno == ENOENT)
        return {};
    char first = 0;
    if (!file || ::read(file.fd(), &first, 1) < 0)
        return failure();
    return {};
}

std::expected<void, PosixError> writeTo(const QByteArray& path, const QByteArray& content) {
    const auto target = followedLinks(path);
    if (!target)
        return std::unexpected(target.error());
    if (!isRegularOrMissing(*target))
        return overwriteFile(*target, content);
    if (const auto readable = ensureReadable(*target); !readable)
        return readable;
    const auto replaced = replaceFile(*target, content);
    if (!replaced && folderRefuses(replaced.error()) && ::access(target->constData(), F_OK) == 0)
        return overwriteFile(*target, content);
    return replaced;
}

std::expected<void, PosixError> makeFolders(const QByteArray& path) {
    struct stat status{};
    if (::stat(path.constData(), &status) == 0)
        return S_ISDIR(status.st_mode) ? std::expected<void, PosixError>() : failure(ENOTDIR);
    for (qsizetype end = path.indexOf('/', 1);; end = path.indexOf('/', end + 1)) {
        const auto folder = end < 0 ? path : path.first(end);
        if (::mkdir(folder.constData(), privateFolder) != 0 && errno != EEXIST) {
            const int code = errno;
            // An automounted or read-only folder above may refuse although it is there.
            if (::stat(folder.constData(), &status) != 0 || !S_ISDIR(status.st_mode))
                return failure(code);
        }
        if (end < 0)
            break;
    }
    if (::stat(path.constData(), &status) != 0)
        return failure();
    return S_ISDIR(status.st_mode) ? std::expected<void, PosixError>() : failure(ENOTDIR);
}

}  // namespace

bool PosixFileSystem::exists(const QString& path) const {
    struct stat status{};
    const auto native = nativePath(path);
    return native && ::stat(native->constData(), &status) == 0;
}

std::expected<QByteArray, FileError> PosixFileSystem::read(const QString& path) const {
    return onNativePath(path, [this](const QByteArray& native) {
        auto content = readRegularFile(native);
        const bool isUnread = !content && content.error() != PosixError(ENOENT);
        const std::scoped_lock lock(mutex_);
        if (isUnread)
            unread_.insert(native);
        else
            unread_.erase(native);
        return content;
    });
}

bool PosixFileSystem::wasNotRead(const QByteArray& path) const {
    const std::scoped_lock lock(mutex_);
    return unread_.contains(path);
}

std::expected<void, FileError> PosixFileSystem::write(const QString& path, const QByteArray& content) {
    return onNativePath(path, [&](const QByteArray& native) -> std::expected<void, PosixError> {
        if (wasNotRead(native) && ::access(native.constData(), F_OK) == 0)
            return failure(ENOTRECOVERABLE);
        return writeTo(native, content);
    });
}

std::expected<void, FileError> PosixFileSystem::createDirectory(const QString& path) {
    return onNativePath(path, makeFolders);
}

std::expected<void, FileError> PosixFileSystem::remove(const QString& path) {
    return onNativePath(path, [](const QByteArray& native) -> std::expected<void, PosixError> {
        if (::unlink(native.constData()) != 0)
            return failure();
        return {};
    });
}

}  // namespace tavrelon::desktop
