#pragma once

#include <expected>
#include <memory>

#include "desktop/linux/files/user_folders.h"
#include "desktop/linux/process/command_line.h"
#include "desktop/linux/process/single_instance.h"

namespace tavrelon::program {

/// What is settled before anything is built: how the user wants it, where their folders are, that there is a display,
/// and that no other process serves them.
struct Start {
    desktop::StartMode mode;  ///< `Dashboard` or `Background`
    desktop::UserFolders folders;
    std::unique_ptr<desktop::SingleInstance> instance;
    std::shared_ptr<void> display;  ///< kept until there are others: a server may end with its last
};

/// Reads the command line and claims the user's folders. Where the process has nothing more to do, its exit status; the
/// user was told then.
std::expected<Start, int> prepareStart(int argc, char** argv);

}  // namespace tavrelon::program
