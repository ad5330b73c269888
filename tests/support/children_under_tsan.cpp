// Starting children where the thread sanitizer looks on.

#include <cstdarg>
#include <sched.h>
#include <sys/types.h>

extern "C" int __clone(int (*child)(void*), void* stack, int flags, void* argument, ...);

/// The toolkit starts children by a `clone` that shares the memory until the child becomes another program. GCC 12's
/// sanitizer takes that for a copy, and in the shared memory puts out its own eyes for the thread that called; so the
/// call goes past it, to the C library.
extern "C" __attribute__((no_sanitize("thread"))) int clone(int (*child)(void*), void* stack, int flags, void* argument,
                                                            ...) noexcept
{
    std::va_list rest;
    va_start(rest, argument);
    auto* const parentId = va_arg(rest, pid_t*);
    auto* const storage = va_arg(rest, void*);
    auto* const childId = va_arg(rest, pid_t*);
    va_end(rest);
    return __clone(child, stack, flags, argument, parentId, storage, childId);
}
