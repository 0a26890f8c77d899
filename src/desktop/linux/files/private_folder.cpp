#include "desktop/linux/files/private_folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <cerrno>
#include <memory>
#include <vector>

#include "desktop/linux/files/posix_file_system.h"
#include "desktop/linux/files/posix_files.h"

namespace tavrelon::desktop {

namespace {

using Checked = std::expected<void, QString>;

/// Below that nothing of ours lies.
constexpr int deepest = 8;

Checked refuse(const QByteArray& path, const char* why) {
    return std::unexpected(QFile::decodeName(path) + QLatin1StringView(why));
}

/// Takes the bits of all others, and what is not to be there at all, from the open file. It is named by its descriptor,
/// so that nothing can be put into its place in between.
Checked setMode(const Descriptor& file, const struct stat& status, mode_t wanted, const QByteArray& path) {
    if ((status.st_mode & 07777U) == wanted)
        return {};
    const auto opened = "/proc/self/fd/" + QByteArray::number(file.fd());
    if (::chmod(opened.constData(), wanted) != 0 && errno != EROFS)
        return refuse(path, " is open to other users, and its mode cannot be changed.");
    return {};
}

std::vector<QByteArray> namesIn(const Descriptor& folder) {
    std::vector<QByteArray> names;
    const int fd = ::openat(folder.fd(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(fd >= 0 ? ::fdopendir(fd) : nullptr, ::closedir);
    while (const auto* entry = listing ? ::readdir(listing.get()) : nullptr)
        if (const QByteArray name(entry->d_name); name != "." && name != "..")
            names.push_back(name);
    return names;
}

Checked checkEntry(const Descriptor& parent, const QByteArray& name, const QByteArray& path, int depth);

/// The folder first, then what is in it: from then on nobody else can put anything there.
Checked checkFolder(const Descriptor& folder, const struct stat& status, const QByteArray& path, int depth) {
    if (auto set = setMode(folder, status, S_IRWXU, path); !set)
        return set;
    if (depth == deepest)
        return {};
    for (const auto& name : namesIn(folder))
        if (auto checked = checkEntry(folder, name, path + '/' + name, depth + 1); !checked)
            return checked;
    return {};
}

Checked checkFile(const Descriptor& file, const struct stat& status, const QByteArray& path, int depth) {
    if (status.st_nlink <= 1)  // none where it was replaced just now
        return setMode(file, status, status.st_mode & S_IRWXU, path);
    // Deeper down lie what others installed, and we only read it.
    return depth == 1 ? refuse(path, " has a second name (a hard link). Remove one of the two.") : Checked();
}

Checked checkEntry(const Descriptor& parent, const QByteArray& name, const QByteArray& path, int depth) {
    const Descriptor entry(::openat(parent.fd(), name.constData(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat status{};
    if (!entry || ::fstat(entry.fd(), &status) != 0)
        return errno == ENOENT ? Checked() : refuse(path, " cannot be looked at.");
    if (status.st_uid != ::geteuid())
        return refuse(path, " belongs to another user.");
    if (S_ISDIR(status.st_mode))
        return checkFolder(entry, status, path, depth);
    if (depth == 0)
        return refuse(path, S_ISLNK(status.st_mode) ? " is a symbolic link. Put a folder there." : " is no folder.");
    return S_ISREG(status.st_mode) ? checkFile(entry, status, path, depth) : Checked();
}

}  // namespace

std::expected<void, QString> makePrivate(const QString& folder) {
    const auto path = QFile::encodeName(folder);
    struct stat status{};
    if (::lstat(path.constData(), &status) != 0) {
        // A home that takes no files costs only the memory, and holds nothing to guard.
        static_cast<void>(PosixFileSystem().createDirectory(folder));
        if (::lstat(path.constData(), &status) != 0)
            return {};
    }
    return checkEntry(Descriptor(AT_FDCWD), path, path, 0);
}

}  // namespace tavrelon::desktop
