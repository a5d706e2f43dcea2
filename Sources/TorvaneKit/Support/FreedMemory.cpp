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

void returnFreedMemory() {
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

} // namespace torvane
