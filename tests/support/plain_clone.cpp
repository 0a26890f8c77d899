// Only under the thread sanitizer, which stops at the way in which Qt starts other programs: it takes the child, which
// shares the parent's memory until it runs the program, for a second copy of the parent. Here it does not get to see
// it.
#include <sched.h>

#include <cstdarg>

extern "C" {

// NOLINTNEXTLINE(bugprone-reserved-identifier): glibc's own
int __clone(int (*function)(void*), void* stack, int flags, void* argument, ...);

int clone(int (*function)(void*), void* stack, int flags, void* argument, ...) {
    std::va_list rest;
    va_start(rest, argument);
    auto* parentId = va_arg(rest, void*);
    auto* threadStorage = va_arg(rest, void*);
    auto* childId = va_arg(rest, void*);
    va_end(rest);
    return __clone(function, stack, flags, argument, parentId, threadStorage, childId);
}
}
