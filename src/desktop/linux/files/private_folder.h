#pragma once

#include <QString>
#include <expected>

namespace tavrelon::desktop {

/// Sees to it that the folder and all in it are this user's alone: modes are set to 0700 and to the owner's own bits of
/// each file, and a missing folder is made. The error is a sentence for the user, on which the folder must be neither
/// read nor written: it is a symbolic link, it or something in it belongs to another user, a file in it has a second
/// name (a hard link) through which another file would be read or changed, or its modes cannot be set. Nothing but
/// modes is changed. Links of the user's own within it are left alone, as is what a read-only disk holds.
std::expected<void, QString> makePrivate(const QString& folder);

}  // namespace tavrelon::desktop
