#include "desktop/linux/process/private_memory.h"

#include <sys/prctl.h>
#include <sys/resource.h>

#include <QtGlobal>

namespace tavrelon::desktop {

void keepMemoryPrivate() {
    rlimit dumps{};
    ::getrlimit(RLIMIT_CORE, &dumps);
    dumps.rlim_cur = 0;  // the user may allow them again in a program that this one starts
    ::setrlimit(RLIMIT_CORE, &dumps);
    if (!qEnvironmentVariableIsSet("TAVRELON_ALLOW_DEBUGGER"))
        ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
}

}  // namespace tavrelon::desktop
