#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "desktop/documents/confinement.h"

namespace tavrelon::desktop {

namespace {

#if defined(__x86_64__)
constexpr std::uint32_t thisMachine = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t thisMachine = AUDIT_ARCH_AARCH64;
#else
constexpr std::uint32_t thisMachine = 0;
#endif

/// What libraries need to compute, to load their own parts, and to read and answer through what is open. All else is as
/// if the kernel did not have it, which they know how to bear; so are calls that come with later kernels.
constexpr auto plainCalls = std::to_array<unsigned>({
    SYS_read,
    SYS_readv,
    SYS_pread64,
    SYS_write,
    SYS_writev,
    SYS_close,
    SYS_lseek,
    SYS_dup,
    SYS_dup3,
    SYS_pipe2,
    SYS_eventfd2,
    SYS_ppoll,
    SYS_fadvise64,
    // what files are, not what they hold
    SYS_fstat,
    SYS_newfstatat,
    SYS_statx,
    SYS_faccessat,
    SYS_readlinkat,
    SYS_getdents64,
    SYS_getcwd,
    SYS_statfs,
    SYS_fstatfs,
    // memory
    SYS_brk,
    SYS_mmap,
    SYS_munmap,
    SYS_mprotect,
    SYS_mremap,
    SYS_madvise,
    // threads and time
    SYS_futex,
    SYS_set_robust_list,
    SYS_get_robust_list,
    SYS_set_tid_address,
    SYS_rseq,
    SYS_membarrier,
    SYS_sched_yield,
    SYS_sched_getaffinity,
    SYS_sched_getparam,
    SYS_sched_getscheduler,
    SYS_sched_get_priority_min,
    SYS_sched_get_priority_max,
    SYS_clock_gettime,
    SYS_clock_getres,
    SYS_clock_nanosleep,
    SYS_nanosleep,
    SYS_gettimeofday,
    // signals to itself
    SYS_rt_sigaction,
    SYS_rt_sigprocmask,
    SYS_rt_sigreturn,
    SYS_rt_sigpending,
    SYS_sigaltstack,
    SYS_restart_syscall,
    // who and where it is
    SYS_getpid,
    SYS_getppid,
    SYS_gettid,
    SYS_getuid,
    SYS_geteuid,
    SYS_getgid,
    SYS_getegid,
    SYS_getresuid,
    SYS_getresgid,
    SYS_uname,
    SYS_sysinfo,
    SYS_getrusage,
    SYS_times,
    SYS_getrandom,
    SYS_exit,
    SYS_exit_group,
#if defined(__x86_64__)
    SYS_stat,
    SYS_lstat,
    SYS_access,
    SYS_readlink,
    SYS_getdents,
    SYS_poll,
    SYS_pipe,
    SYS_dup2,
    SYS_arch_prctl,
    SYS_time,
#endif
});

constexpr std::uint32_t argument(int number) {
    return static_cast<std::uint32_t>(offsetof(seccomp_data, args)) + 8 * static_cast<std::uint32_t>(number);
}

/// A program for the kernel's filter machine, which has the number of the call in its one register between two rules.
class Program {
 public:
    Program() {
        load(offsetof(seccomp_data, arch));
        // Calls of another machine, where it runs those as well, have other numbers: nobody here makes any.
        add({BPF_JMP | BPF_JEQ | BPF_K, 1, 0, thisMachine});
        give(SECCOMP_RET_KILL_PROCESS);
        load(offsetof(seccomp_data, nr));
    }

    void allow(unsigned call) {
        add({BPF_JMP | BPF_JEQ | BPF_K, 0, 1, call});
        give(SECCOMP_RET_ALLOW);
    }

    /// Allows the call if the masked low half of an argument is `value`. That half is all that the kernel takes of an
    /// `int`.
    void allowWhere(unsigned call, int number, std::uint32_t mask, std::uint32_t value, int refusal = EPERM) {
        add({BPF_JMP | BPF_JEQ | BPF_K, 0, 5, call});
        load(argument(number));
        add({BPF_ALU | BPF_AND | BPF_K, 0, 0, mask});
        add({BPF_JMP | BPF_JEQ | BPF_K, 0, 1, value});
        give(SECCOMP_RET_ALLOW);
        give(SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(refusal));
    }

    /// Allows the call if both arguments are 0, pointers as a whole.
    void allowWhereBothZero(unsigned call, int first, int second) {
        add({BPF_JMP | BPF_JEQ | BPF_K, 0, 8, call});
        load(argument(first));
        add({BPF_JMP | BPF_JEQ | BPF_K, 0, 5, 0});
        load(argument(second));
        add({BPF_JMP | BPF_JEQ | BPF_K, 0, 3, 0});
        load(argument(second) + 4);
        add({BPF_JMP | BPF_JEQ | BPF_K, 0, 1, 0});
        give(SECCOMP_RET_ALLOW);
        give(SECCOMP_RET_ERRNO | EPERM);
    }

    bool install() {
        give(SECCOMP_RET_ERRNO | ENOSYS);
        const sock_fprog program{static_cast<unsigned short>(code_.size()), code_.data()};
        return ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_TSYNC, &program) == 0;
    }

 private:
    void add(sock_filter step) { code_.push_back(step); }
    void load(std::uint32_t offset) { add({BPF_LD | BPF_W | BPF_ABS, 0, 0, offset}); }
    void give(std::uint32_t verdict) { add({BPF_RET | BPF_K, 0, 0, verdict}); }

    std::vector<sock_filter> code_;
};

constexpr std::uint32_t whole = 0xFFFFFFFF;
/// All that would change a file or make one.
constexpr std::uint32_t writing = O_ACCMODE | O_CREAT | O_TRUNC | O_APPEND | (O_TMPFILE & ~O_DIRECTORY);

}  // namespace

bool canFilterCalls() {
    return thisMachine != 0 && ::prctl(PR_GET_SECCOMP) >= 0;
}

bool filterCalls() {
    if (thisMachine == 0)
        return false;
    Program program;
    for (const unsigned call : plainCalls)
        program.allow(call);
    program.allowWhere(SYS_openat, 2, writing, O_RDONLY, EACCES);
#if defined(__x86_64__)
    program.allowWhere(SYS_open, 1, writing, O_RDONLY, EACCES);
#endif
    program.allowWhere(SYS_clone, 0, CLONE_THREAD, CLONE_THREAD);  // a thread, no process
    program.allowWhere(SYS_tgkill, 0, whole, static_cast<std::uint32_t>(::getpid()));
    program.allowWhere(SYS_prctl, 0, whole, PR_SET_NAME);
    program.allowWhereBothZero(SYS_prlimit64, 0, 2);  // its own limits, to read them
    // The commands that concern the descriptor alone are the lowest; one of the others has signals sent to any process.
    static_assert(F_DUPFD == 0 && F_GETFD == 1 && F_SETFD == 2 && F_GETFL == 3);
    program.allowWhere(SYS_fcntl, 1, ~std::uint32_t{3}, 0);
    return program.install();
}

}  // namespace tavrelon::desktop
