// A program to be updated, or to be updated to. What it says of itself, and how it behaves, is compiled in.

#include "TorvaneUpdates/Architecture.h"
#include "TorvaneUpdates/ProgramNote.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

#ifndef SAMPLE_ARCHITECTURE
#define SAMPLE_ARCHITECTURE torvane::Updates::targetArchitecture
#endif

TORVANE_PROGRAM_NOTE(SAMPLE_PRODUCT, SAMPLE_VERSION, SAMPLE_ARCHITECTURE);

int main() {
    if (SAMPLE_CRASHES)
        std::abort();
    std::puts("velisk " SAMPLE_SAYS);
    std::fflush(stdout);
    while (SAMPLE_HANGS)
        ::pause();
    return SAMPLE_STATUS;
}
