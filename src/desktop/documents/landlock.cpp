#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>

#include "desktop/documents/confinement.h"

namespace tavrelon::desktop {

namespace {

// As the kernel has them. Headers of older kernels than the one that runs know only a part.
constexpr std::uint64_t readFile = 1U << 2;
constexpr std::uint64_t readFolder = 1U << 3;
constexpr std::uint32_t askVersion = 1;
constexpr int pathBeneath = 1;

struct Ruleset {
    std::uint64_t files = 0;
    std::uint64_t network = 0;
    std::uint64_t scopes = 0;
};
struct [[gnu::packed]] PathRule {
    std::uint64_t allowed = 0;
    std::int32_t folder = -1;
};

/// All that a version can forbid: each brought some of it.
Ruleset everythingOf(int version) {
    constexpr int bitsOfFirst = 13;
    int bits = bitsOfFirst;
    for (const int broughtOne : {2, 3, 5})  // move between folders, truncate, control a device
        bits += version >= broughtOne ? 1 : 0;
    return {.files = (std::uint64_t{1} << bits) - 1,
            .network = version >= 4 ? 3U : 0U,  // TCP
            .scopes = version >= 6 ? 3U : 0U};  // abstract sockets and signals
}

/// Leaves out what is not there.
void allow(int ruleset, const QByteArray& path) {
    const int folder = ::open(path.constData(), O_PATH | O_CLOEXEC);
    if (folder < 0)
        return;
    struct stat status{};
    const bool isFolder = ::fstat(folder, &status) == 0 && S_ISDIR(status.st_mode);
    const PathRule rule{.allowed = isFolder ? readFile | readFolder : readFile, .folder = folder};
    ::syscall(SYS_landlock_add_rule, ruleset, pathBeneath, &rule, 0);
    ::close(folder);
}

}  // namespace

int landlockVersion() {
    return std::max(0, static_cast<int>(::syscall(SYS_landlock_create_ruleset, nullptr, 0, askVersion)));
}

bool closeFiles(const QList<QByteArray>& readable) {
    const int version = landlockVersion();
    if (version == 0)
        return false;
    const auto everything = everythingOf(version);
    // What an older kernel does not know is 0 and may stand behind what it knows.
    const int ruleset = static_cast<int>(::syscall(SYS_landlock_create_ruleset, &everything, sizeof(everything), 0));
    if (ruleset < 0)
        return false;
    for (const auto& path : readable)
        allow(ruleset, path);
    const bool closed = ::syscall(SYS_landlock_restrict_self, ruleset, 0) == 0;
    ::close(ruleset);
    return closed;
}

}  // namespace tavrelon::desktop
