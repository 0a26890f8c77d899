// Confines itself as the reader of foreign files does and then tries what such a file might have it do. It prints a
// line for each attempt, its name and what came of it. Arguments: a file that is not to be read, one that is, and the
// number of a descriptor that was left open.
#include <fcntl.h>
#include <linux/io_uring.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "desktop/documents/confinement.h"

namespace {

void report(const char* attempt, bool done) {
    std::printf("%s %s\n", attempt, done ? "done" : "refused");
}

bool canOpen(const std::string& path, int flags) {
    return ::open(path.c_str(), flags | O_CLOEXEC, 0600) >= 0;
}

bool canReadMemoryOf(pid_t process) {
    std::array<char, 8> here{};
    iovec local{here.data(), here.size()};
    iovec remote{reinterpret_cast<void*>(0x1000), here.size()};
    // Of an address that nobody has: EFAULT says that the door is open.
    return ::process_vm_readv(process, &local, 1, &remote, 1, 0) >= 0 || errno == EFAULT;
}

bool canFork() {
    const pid_t child = ::fork();
    if (child == 0)
        std::_Exit(0);
    return child > 0;
}

bool canRaiseLimits() {
    const rlimit unlimited{RLIM_INFINITY, RLIM_INFINITY};
    return ::setrlimit(RLIMIT_CPU, &unlimited) == 0;
}

bool canCompute() {
    int result = 0;
    std::thread([&result] { result = 42; }).join();
    return result == 42;
}

}  // namespace

int main(int, char** argv) {
    using namespace tavrelon::desktop;
    boundThisProcess();
    confineThisProcess({"/usr"});
    const std::string secret = argv[1];
    const pid_t parent = ::getppid();
    report("read-secret", canOpen(secret, O_RDONLY));
    report("read-system", canOpen(argv[2], O_RDONLY));
    report("write", canOpen(secret, O_WRONLY) || canOpen(secret + ".new", O_WRONLY | O_CREAT));
    report("remove", ::unlink(secret.c_str()) == 0);
    report("socket", ::socket(AF_UNIX, SOCK_STREAM, 0) >= 0 || ::socket(AF_INET, SOCK_STREAM, 0) >= 0);
    io_uring_params parameters{};
    report("io-uring", ::syscall(SYS_io_uring_setup, 1, &parameters) >= 0);
    report("trace", ::ptrace(PTRACE_SEIZE, parent, nullptr, nullptr) == 0);
    report("memory", canReadMemoryOf(parent));
    report("signal", ::kill(parent, 0) == 0);
    report("owned-signal", ::fcntl(STDIN_FILENO, F_SETOWN, parent) == 0);
    report("fork", canFork());
    report("limits", canRaiseLimits());
    report("descriptor", ::fcntl(std::atoi(argv[3]), F_GETFD) >= 0);
    report("compute", canCompute());
    std::fflush(stdout);
    ::execl("/usr/bin/env", "env", nullptr);
    report("program", false);
    std::fflush(stdout);
    std::_Exit(0);
}
