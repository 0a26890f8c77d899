#include "desktop/documents/confinement.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>

namespace tavrelon::desktop {

namespace {

void limit(decltype(RLIMIT_CPU) resource, rlim_t value) {
    const rlimit bound{value, value};
    ::setrlimit(resource, &bound);
}

}  // namespace

void boundThisProcess() {
    ::closefrom(STDERR_FILENO + 1);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    limit(RLIMIT_CORE, 0);
    ::signal(SIGXFSZ, SIG_IGN);  // a library that would write a cache shall merely fail to
    limit(RLIMIT_FSIZE, 0);
    limit(RLIMIT_CPU, 20);  // seconds
#if !__has_feature(address_sanitizer) && !__has_feature(thread_sanitizer)
    constexpr rlim_t gibibyte = rlim_t{1} << 30;  // of addresses, libraries included
    limit(RLIMIT_AS, gibibyte);
#endif
}

Confinement confineThisProcess(const QList<QByteArray>& readable) {
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);  // which both ask for
    const bool filesClosed = closeFiles(readable);
    return {filesClosed, filterCalls()};  // in this order: the filter would refuse what closes the files
}

std::optional<QString> confinementGap() {
    const bool files = landlockVersion() > 0;
    const bool calls = canFilterCalls();
    if (files && calls)
        return std::nullopt;
    return QStringLiteral("The kernel cannot keep the reader of foreign files from %1")
        .arg(files   ? QStringLiteral("sockets and programs (seccomp)")
             : calls ? QStringLiteral("reading other files (Landlock)")
                     : QStringLiteral("reading other files, sockets and programs (Landlock, seccomp)"));
}

}  // namespace tavrelon::desktop
