#include "Support/FreedMemory.h"

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace torvane {

void shareMemoryAmongThreads() {
#ifdef __GLIBC__
    mallopt(M_ARENA_MAX, 1);
#endif
}

void keepLargeBlocksApart() {
#ifdef __GLIBC__
    constexpr int limit = 128 * 1024; // malloc's own at the start; naming it keeps it there.
    mallopt(M_MMAP_THRESHOLD, limit);
    mallopt(M_TRIM_THRESHOLD, 2 * limit);
#endif
}

void returnFreedMemory() {
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

} // namespace torvane
